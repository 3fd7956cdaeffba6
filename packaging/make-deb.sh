#!/usr/bin/env bash
# make-deb.sh [FOLDER]: builds the Debian package, checks it, and leaves it in FOLDER, the current one by default.
set -euo pipefail
target=$(readlink -f "${1:-.}")
cd "$(dirname "$(readlink -f "$0")")/.."
cmake --preset release -B build/package -DSUNPANE_DISTRIBUTION=ON -DSUNPANE_TESTS=OFF
cmake --build build/package --parallel "${JOBS:-2}"
(cd build/package && umask 022 && cpack)
lintian --fail-on error build/package/dawnly_*.deb
cp build/package/dawnly_*.deb "$target"
