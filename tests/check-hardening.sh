#!/usr/bin/env bash
# check-hardening.sh LIBRARY COMPILE_COMMANDS SOURCE_DIR CONFIG
# Passes when the module's shared library LIBRARY is hardened as the build
# sets out to make it (cmake/Defaults.cmake), as its ELF headers and the
# compile commands show:
# - full RELRO: a GNU_RELRO segment and immediate binding (-z relro -z now);
# - a stack that is not executable (GNU_STACK without E);
# - no text relocations, no RPATH or RUNPATH;
# - every module source compiled with -fstack-protector-strong, and the
#   library calls __stack_chk_fail;
# - in optimised builds (CONFIG other than Debug), every module source
#   compiled with -D_FORTIFY_SOURCE=2 and optimisation, and the library calls
#   the C library's checked functions (__*_chk).
set -euo pipefail
library=$1
commands=$2
source=$3
config=$4
failed=0
fail() {
    echo "$library: $*"
    failed=1
}

headers=$(readelf -lW "$library")
dynamic=$(readelf -dW "$library")
imports=$(readelf --dyn-syms -W "$library" | awk '$7 == "UND" {print $8}')

grep -q 'GNU_RELRO' <<<"$headers" || fail "no GNU_RELRO segment"
grep -Eq '\(FLAGS\).*BIND_NOW|\(FLAGS_1\).*NOW|\(BIND_NOW\)' <<<"$dynamic" ||
    fail "symbols are not bound at load time (-z now)"
stack=$(grep 'GNU_STACK' <<<"$headers" || true)
if [ -z "$stack" ]; then
    fail "no GNU_STACK header, so the stack would be executable"
elif grep -q 'RWE' <<<"$stack"; then
    fail "executable stack"
fi
grep -q 'TEXTREL' <<<"$dynamic" && fail "text relocations"
grep -Eq '\((RPATH|RUNPATH)\)' <<<"$dynamic" && fail "an RPATH or RUNPATH"
grep -q '^__stack_chk_fail' <<<"$imports" || fail "no stack protector checks"
fortify=0
if [ "$config" != Debug ]; then
    fortify=1
    grep -Eq '^__[a-z_]+_chk@' <<<"$imports" || fail "no checked C library calls (fortify)"
fi

# The flags of every module source, from CMake's compile commands.
problems=$(awk -v root="$source/" -v fortify="$fortify" '
    /"command":/ { command = $0 }
    /"file":/ {
        file = $0
        sub(/.*"file": *"/, "", file)
        sub(/".*/, "", file)
        if (index(file, root) != 1) next
        name = substr(file, length(root) + 1)
        if (name !~ /^(module|function|binding|info|hwm|gpio|backlight|network)\//) next
        ++sources
        if (command !~ /-fstack-protector-strong/) print name ": no -fstack-protector-strong"
        if (fortify && command !~ /-D_FORTIFY_SOURCE=2/) print name ": no -D_FORTIFY_SOURCE=2"
        if (fortify && command !~ / -O[123s]/) print name ": fortify without optimisation"
    }
    END { if (sources == 0) print "no module source among the compile commands" }
' "$commands")
[ -z "$problems" ] || fail "$problems"

[ "$failed" -eq 0 ] || exit 1
echo "$library: RELRO, immediate binding, no executable stack, stack protector$(
    [ "$fortify" -eq 1 ] && echo ", fortified")"
