#!/bin/sh
# Installs what is missing, builds the programs, and makes the Debian package from them.
#
#   scripts/package.sh [RELEASE]
#
# The package is build/package/vesk_VERSION_ARCHITECTURE.deb; RELEASE is put behind the version.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh package
launcher=
command -v ccache >/dev/null && launcher=ccache
cmake -S . -B build/package -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DVESK_TESTS=OFF -DVESK_EXAMPLES=OFF -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" \
    -DCPACK_DEBIAN_PACKAGE_RELEASE="${1:-}" >/dev/null
cmake --build build/package --parallel "$(nproc)"
cd build/package
rm -f ./*.deb
cpack
