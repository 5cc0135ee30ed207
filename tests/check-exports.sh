#!/usr/bin/env bash
# check-exports.sh LIBRARY VERSION_SCRIPT
# Passes when the library's dynamic symbol table defines exactly the names
# the version script lists as global.
set -euo pipefail
library=$1
script=$2
expected=$(sed -n '/global:/,/local:/p' "$script" | grep -v -e 'global:' -e 'local:' |
           tr ';' '\n' | tr -d ' ' | grep -v '^$' | sort)
actual=$(nm -D --defined-only "$library" | awk '{print $3}' | sort)
if [ "$expected" != "$actual" ]; then
    echo "exports of $library differ from $script:"
    diff <(echo "$expected") <(echo "$actual") || true
    exit 1
fi
echo "$library exports exactly $(echo "$actual" | wc -l) symbols"
