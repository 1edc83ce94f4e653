#!/bin/sh
# Installs what is missing, builds everything and runs every test.
#
#   scripts/test.sh [PRESET [CTEST OPTIONS...]]
#
# PRESET is release (the default), debug or sanitize: the suite under AddressSanitizer and
# UndefinedBehaviorSanitizer, where the first finding ends the program that has it. VESK_UNITY_TESTS=OFF in the
# environment compiles each test source on its own.
set -eu
cd "$(dirname "$0")/.."

preset=${1:-release}
[ $# -eq 0 ] || shift

# Leaks cannot be found where the process may not be traced (some containers): say so instead of failing.
leaks() {
    probe=$(mktemp -d)
    trap 'rm -rf "$probe"' EXIT
    echo 'int main() {}' >"$probe/probe.cpp"
    g++ -fsanitize=address "$probe/probe.cpp" -o "$probe/probe"
    if ASAN_OPTIONS=detect_leaks=1 "$probe/probe" >/dev/null 2>&1; then
        echo 1
    else
        echo "test.sh: the leak detector does not work here; running without it" >&2
        echo 0
    fi
}

scripts/setup.sh test
jobs=$(nproc)
# Most tests wait most of the time, for a clock or for each other.
set -- --output-on-failure --no-tests=error --parallel "$((4 * jobs))" "$@"

launcher=
command -v ccache >/dev/null && launcher=ccache
cmake --preset "$preset" -DVESK_TESTS=ON -DVESK_UNITY_TESTS="${VESK_UNITY_TESTS:-ON}" -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher"

if [ "$preset" = sanitize ]; then
    detect_leaks=$(leaks)
    export ASAN_OPTIONS="halt_on_error=1:strict_string_checks=1:check_initialization_order=1:detect_stack_use_after_return=1:detect_leaks=$detect_leaks"
    export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
    export LSAN_OPTIONS="suppressions=$PWD/tests/support/lsan.supp:print_suppressions=0"
fi
cmake --build --preset "$preset" --parallel "$jobs"
ctest --preset "$preset" "$@"
