#!/usr/bin/env bash
# check-units.sh UNIT...
# systemd-analyze verify accepts each unit without a word: an unknown key,
# a misspelt section or a missing program fails the check.
set -euo pipefail
if ! command -v systemd-analyze > /dev/null; then
    echo "SKIP: systemd-analyze (package systemd) is not installed"
    exit 77
fi
output=$(systemd-analyze verify --man=no "$@" 2>&1) || { echo "$output"; exit 1; }
if [ -n "$output" ]; then
    echo "$output"
    exit 1
fi
for unit in "$@"; do
    case $unit in
        *.service)
            for setting in NoNewPrivileges=yes ProtectSystem=strict ProtectHome=yes PrivateTmp=yes; do
                grep -qx "$setting" "$unit" || { echo "$unit: $setting missing"; exit 1; }
            done ;;
    esac
done
echo "units: $# verified"
