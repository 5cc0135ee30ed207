#!/usr/bin/env bash
# Builds the Debian packages (voradrv, voradrv-tools, voradrv-dev) into
# BUILD_DIR, configured for /usr so the module goes to Debian's multiarch
# library directory.
#   package.sh [BUILD_DIR]            (default: build-package)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build-package}
# cpack's dependency scan needs dpkg-shlibdeps (dpkg-dev) and file.
./scripts/install-deps.sh dpkg-dev file
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=/usr \
    -DVORADRV_WERROR=ON -DVORADRV_TESTS=OFF >/dev/null
cmake --build "$build" -j "$(nproc)" >/dev/null
rm -f "$build"/*.deb
(cd "$build" && cpack -G DEB >/dev/null)
ls "$build"/*.deb
