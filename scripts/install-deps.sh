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

sudo=
if [ "$(id -u)" -ne 0 ]; then
    sudo=sudo
fi
echo "Installing: ${missing[*]}"
$sudo apt-get update
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
