#!/usr/bin/env bash
# An installed tree (cmake --install into a scratch prefix):
# - nothing installed outside the prefix: run as root, the whole check runs
#   as an unprivileged user (setpriv), so the system refuses any such write,
#   and every installed file must lie under the prefix;
# - no simulated board library where the module probes for real ones;
# - voractl finds the installed module and simulator beside itself, also
#   after the tree is moved;
# - the man page, bash completion and board profiles are in place;
# - a host builds against the installed header through pkg-config and
#   through the CMake package config, and runs under the installed
#   run-simulated (skipped in sanitizer builds, whose module needs the
#   sanitizer run-time loaded first).
#   check-install.sh BUILD_DIR SOURCE_DIR [sanitize]
set -euo pipefail
build=$1
source=$2
sanitize=${3:-}
fail() { echo "FAIL: $*" >&2; exit 1; }

# As root, again as nobody, when nobody can read the build tree (not where
# it lies in a private home). cmake --install writes its list of installed
# files into the build tree, so that one file is made the user's.
nobody=(setpriv --reuid=65534 --regid=65534 --clear-groups)
if [ "$(id -u)" = 0 ] && "${nobody[@]}" test -r "$build/cmake_install.cmake" -a -r "$source/examples/host.c"; then
    install -o 65534 -g 65534 -m 0644 /dev/null "$build/install_manifest.txt"
    exec "${nobody[@]}" env HOME=/nonexistent "$0" "$@"
fi
[ "$(id -u)" = 0 ] && echo "install: as root (nobody cannot read $build)"
root=$(mktemp -d /tmp/vtest-install-XXXXXX)
trap 'rm -rf "$root"' EXIT

cmake --install "$build" --prefix "$root/first" >/dev/null
outside=$(grep -v "^$root/first/" "$build/install_manifest.txt" || true)
[ -z "$outside" ] || fail "installed outside the prefix: $outside"
for unit in voradrv-exporter.service voradrv-textfile.service; do
    grep -q "^ExecStart=$root/first/bin/voractl " "$root/first/lib/systemd/system/$unit" ||
        fail "$unit does not start the voractl installed beside it"
done
mv "$root/first" "$root/usr"  # it must not matter where the tree was installed
prefix=$root/usr
export VORA_SIM_STATE=$root/board.json VORA_SIM_TIME=0

for dir in lib lib64; do
    for name in libVORA-4.00.so libVORA-3.02.so libEApi.so; do
        [ ! -e "$prefix/$dir/$name" ] || fail "$dir/$name would stand in for a board library"
    done
done
sims=$(cd "$prefix" && find . -name 'libVORA-*.so' -o -name 'libEApi.so' | sort | tr '\n' ' ')
[ "$sims" = "./libexec/voradrv/libEApi.so ./libexec/voradrv/libVORA-3.02.so ./libexec/voradrv/libVORA-4.00.so ./libexec/voradrv/standin/libEApi.so ./libexec/voradrv/standin/libVORA-3.02.so ./libexec/voradrv/standin/libVORA-4.00.so " ] ||
    fail "simulated libraries at: $sims"
for file in bin/voractl libexec/voradrv/run-simulated libexec/voradrv/libvoraredirect.so \
            share/man/man1/voractl.1.gz share/bash-completion/completions/voractl \
            share/voradrv/profiles/vora4.json share/voradrv/profiles/eapi.json \
            include/voradrv.h; do
    [ -e "$prefix/$file" ] || fail "$file is not installed"
done
pc=$(find "$prefix" -name voradrv.pc)
config=$(find "$prefix" -name VORADrvConfig.cmake)
module=$(find "$prefix" -name libVORADrv.so)
[ -n "$pc" ] && [ -n "$config" ] && [ -n "$module" ] || fail "module, .pc or CMake config missing"

name=$("$prefix/bin/voractl" --sim get "Platform Information/Board name")
[ "$name" = VB-4410 ] || fail "installed voractl --sim reads '$name'"
loaded=$(LD_DEBUG=files "$prefix/bin/voractl" --sim get 0x1010402 2>&1 >/dev/null |
         grep -o "file=[^ ]*libVORADrv.so" | sort -u | sed 's/^file=//')
[ "$(realpath "$loaded")" = "$(realpath "$module")" ] || fail "installed voractl loads: $loaded"
out=$("$prefix/libexec/voradrv/run-simulated" --generation 4 -- "$prefix/bin/voractl" list)
grep -q "^    0x1010402  Board name .* VB-4410" <<<"$out" || fail "run-simulated voractl list"

export PKG_CONFIG_PATH=$(dirname "$pc")
[ "$(realpath "$(pkg-config --variable=module voradrv)")" = "$(realpath "$module")" ] ||
    fail "pkg-config module: $(pkg-config --variable=module voradrv)"
if [ -n "$sanitize" ]; then
    echo "install: layout and voractl pass (hosts not built in a sanitizer build)"
    exit 0
fi
# shellcheck disable=SC2046
cc -Wall -Wextra -Werror -o "$root/host-pc" "$source/examples/host.c" \
    -DVORADRV_MODULE_PATH="\"$module\"" $(pkg-config --cflags --libs voradrv)
out=$("$prefix/libexec/voradrv/run-simulated" -- "$root/host-pc")
grep -q "^Voltage/VCORE (0x1020201): 1.05 V$" <<<"$out" || fail "the host built with pkg-config"
cmake -S "$source/examples" -B "$root/host-cmake" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$root/host-cmake" >/dev/null
out=$("$prefix/libexec/voradrv/run-simulated" -- "$root/host-cmake/voradrv-host")
grep -q "^Voltage/VCORE (0x1020201): 1.05 V$" <<<"$out" || fail "the host built with the CMake config"
echo "install: all checks pass"
