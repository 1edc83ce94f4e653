#!/bin/sh
# Runs the fuzz targets for long, guided by coverage; the suite runs each for a second or two only.
#
#   scripts/fuzz.sh [SECONDS [TARGET...]]
#
# SECONDS per target, 60 by default; TARGET such as fuzz_frame, all by default. New inputs gather in
# build/fuzz/corpus/TARGET; an input that crashes is left in build/fuzz.
set -eu
cd "$(dirname "$0")/.."

seconds=${1:-60}
[ $# -eq 0 ] || shift

scripts/setup.sh fuzz
cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
    -DVESK_SANITIZE=ON -DVESK_FUZZ=ON
if [ $# -eq 0 ]; then
    for source in tests/fuzz/fuzz_*.cpp; do
        set -- "$@" "$(basename "$source" .cpp)"
    done
fi
cmake --build build/fuzz --parallel "$(nproc)" --target "$@"

# The curses libraries keep their tables until the process ends.
export LSAN_OPTIONS="suppressions=$PWD/tests/support/lsan.supp:print_suppressions=0"
for target in "$@"; do
    echo "=== $target, $seconds s"
    mkdir -p "build/fuzz/corpus/$target"
    words="$PWD/tests/fuzz/dictionaries/${target#fuzz_}.dict"
    [ -f "$words" ] || words=
    # Without what the targets themselves say of every wrong input.
    (cd build/fuzz && bin/"$target" ${words:+-dict="$words"} -max_total_time="$seconds" -print_final_stats=1 \
        -close_fd_mask=2 \
        "corpus/$target" "../../tests/fuzz/seeds/${target#fuzz_}")
done
