#!/usr/bin/env bash
# check-units.sh FILE...
# systemd-analyze verify accepts each unit without a word (an unknown key, a
# misspelt section or a missing program fails the check), and rates each
# service's exposure 2.0 or less; systemd-sysusers makes the user a .sysusers
# file names, in a scratch root.
set -euo pipefail
if ! command -v systemd-analyze > /dev/null; then
    echo "SKIP: systemd-analyze (package systemd) is not installed"
    exit 77
fi
units=() root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
mkdir "$root/etc"
for file in "$@"; do
    case $file in
        *.sysusers) systemd-sysusers --root="$root" "$(realpath "$file")" 2> /dev/null
                    grep -q '^_voradrv:' "$root/etc/passwd" || { echo "$file: no user made"; exit 1; } ;;
        *.service) units+=("$file")
                   systemd-analyze security --offline=yes --threshold=20 "$file" > /dev/null ||
                       { systemd-analyze security --offline=yes "$file" | tail -1; exit 1; } ;;
        *) units+=("$file") ;;
    esac
done
output=$(systemd-analyze verify --man=no "${units[@]}" 2>&1) || { echo "$output"; exit 1; }
if [ -n "$output" ]; then
    echo "$output"
    exit 1
fi
echo "units: ${#units[@]} verified, their services at an exposure of 2.0 or less"
