#!/usr/bin/env bash
# Installs the Debian packages a job needs, when missing.
#   install-deps.sh [--tests] [EXTRA_PACKAGE...]
# Without --tests: what building the module, the simulator and voractl
# needs (voractl serve is built on libmicrohttpd, zlib, libyaml for its web
# configuration and libcrypt for its bcrypt passwords). With --tests,
# also what only the tests use: GoogleTest; cram (python3-cram), which runs
# voractl's transcripts; curl and openssl, the exporter's HTTP client and
# its test certificate; chromium, which opens the board page headless,
# driven by Selenium (python3-selenium, through chromium-driver);
# promtool
# and the Prometheus server (package prometheus), which check the exports,
# the alerting rules and scrape the exporter; prometheus-node-exporter,
# which serves the textfile export; systemd, whose systemd-analyze checks
# the service files (where systemd runs, installing these starts their
# services).
# It says what it installs before anything asks for a password; run by an
# ordinary user, it installs through sudo, and without sudo it says what to
# run as root and fails.
set -euo pipefail

packages=(cmake g++ make pkg-config libjansson-dev libmicrohttpd-dev zlib1g-dev libyaml-dev
          libcrypt-dev)
if [ "${1:-}" = --tests ]; then
    shift
    packages+=(binutils googletest libgtest-dev libgmock-dev python3-cram curl openssl chromium
               chromium-driver python3-selenium systemd prometheus prometheus-node-exporter)
fi
packages+=("$@")
missing=()
for package in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
        missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

# apt-get's progress is not shown; what goes wrong, it says on standard error.
install=(apt-get install -y -q --no-install-recommends "${missing[@]}")
by_hand="apt-get update && DEBIAN_FRONTEND=noninteractive ${install[*]}"
if [ "$(id -u)" -eq 0 ]; then
    echo "Installing ${#missing[@]} Debian packages: ${missing[*]}" >&2
    apt-get update -q >/dev/null
    DEBIAN_FRONTEND=noninteractive "${install[@]}" >/dev/null
elif command -v sudo >/dev/null; then
    echo "Installing ${#missing[@]} Debian packages through sudo: ${missing[*]}" >&2
    # sudo keeps no environment of the caller's, so DEBIAN_FRONTEND is given
    # on its command line.
    if ! sudo -p "[sudo] password for %u, to run apt-get: " apt-get update -q >/dev/null ||
       ! sudo DEBIAN_FRONTEND=noninteractive "${install[@]}" >/dev/null; then
        printf 'Could not install them; as root, run:\n  %s\n' "$by_hand" >&2
        exit 1
    fi
else
    printf 'These Debian packages are missing: %s\nThere is no sudo here; as root, run:\n  %s\n' \
        "${missing[*]}" "$by_hand" >&2
    exit 1
fi
