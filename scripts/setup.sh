#!/bin/sh
# Installs the Debian packages that a job needs and that are not there yet; does nothing when all are. What the
# package manager says goes to build/setup.log.
#
#   scripts/setup.sh [build|test|dev|fuzz|package]
#
# build: compile the programs; test (the default): build and run the tests as well; dev: everything that the
# checks before a commit use; fuzz: the coverage-guided fuzzers; package: make the Debian package and
# check it.
set -eu

build="g++ cmake ninja-build pkg-config libncurses-dev libasio-dev nlohmann-json3-dev libcli11-dev"
test="$build libgtest-dev libgmock-dev libvterm-dev"

case "${1:-test}" in
    build) wanted=$build ;;
    test) wanted=$test ;;
    dev) wanted="$test libbenchmark-dev clang-format shellcheck python3" ;;
    fuzz) wanted="$test clang" ;;
    package) wanted="$build dpkg-dev file debootstrap" ;;
    *)
        echo "usage: scripts/setup.sh [build|test|dev|fuzz|package]" >&2
        exit 2
        ;;
esac

missing=
for package in $wanted; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

log=$(cd "$(dirname "$0")/.." && pwd)/build/setup.log
mkdir -p "${log%/*}"
echo "Installing:$missing (what apt-get says: $log)"
as_root=
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
        echo "setup.sh: not root and no sudo; as root, run: apt-get install$missing" >&2
        exit 1
    }
    as_root=sudo
fi
# shellcheck disable=SC2086  # a list of packages, to be split
{
    $as_root apt-get update &&
        $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing
} </dev/null >"$log" 2>&1 || {
    tail -n 20 "$log" >&2
    echo "setup.sh: could not install:$missing (all of it: $log)" >&2
    exit 1
}
