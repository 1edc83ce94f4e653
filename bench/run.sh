#!/bin/sh
# Builds the release with the benchmarks and runs them all; prints one table and leaves it in
# BUILD/performance.txt. Installs mosquitto, which the hub is measured beside, when it is missing.
#
#   bench/run.sh [BUILD]      (default build/bench)
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/bench}

as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }
PATH=$PATH:/usr/sbin
command -v mosquitto >/dev/null || as_root apt-get install -y --no-install-recommends mosquitto >&2

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVESK_BENCH=ON -DVESK_TESTS=ON >&2
cmake --build "$build" --target format_bench redraw_bench dispatch_bench hub_bench console_bench key_bench vesk.cursclient \
    vesk.server >&2

# Medians of repetitions that take turns, so that a ratio holds although the machine does other things too.
medians() {
    "$build/bin/$1" --benchmark_format=csv --benchmark_repetitions=9 --benchmark_min_time=0.1 \
        --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true 2>/dev/null |
        awk -F, '/_median/ { gsub(/"/, "", $1); sub(/[\/_](manual_time_)?median$/, "", $1); sub(/\/manual_time$/, "", $1)
                             print $1, $3, $7 }'
}

pair() {
    awk -v what="$1" -v ours="$2" -v other="$3" -v label="$4" -v unit="$5" -v aim="$6" '
        { value[$1] = $2 }
        END { printf "| %s | %.0f %s | %s %.0f %s | %.2f | %s |\n", what, value[ours], unit, label, value[other],
                     unit, value[ours] / value[other], aim }' "$7"
}

results() {
    echo "| What | Measured | Beside it | Ratio | Aim |"
    echo "|---|---|---|---|---|"
    scratch=$(mktemp)
    medians format_bench >"$scratch"
    pair "a value with decimals" fixed_sfmt fixed_snprintf snprintf ns "at most 1" "$scratch"
    pair "a value with an exponent" scientific_sfmt scientific_snprintf snprintf ns "at most 1" "$scratch"
    "$build/bin/redraw_bench"
    medians dispatch_bench >"$scratch"
    awk '{ printf "| messages read, decoded and offered to every display | %.0f/s | | | |\n", $3 }' "$scratch"
    rm -f "$scratch"
    "$build/bin/console_bench"
    "$build/bin/key_bench"
    "$build/bin/hub_bench"
}

results | tee "$build/performance.txt"
