#!/bin/sh
# A station on this machine alone: installs what is missing, builds, starts a server and a simulated station
# on a private socket, and opens the console there. Everything that it started ends with it.
#
#   scripts/demo.sh [CONSOLE OPTIONS...]
#
# The demo has settings of its own, gone when it ends; `-c FILE` uses a file of yours instead.
set -eu
cd "$(dirname "$0")/.."

if [ ! -t 0 ] || [ ! -t 1 ]; then
    echo "demo.sh: the console needs a terminal" >&2
    exit 1
fi

scripts/setup.sh build
launcher=
command -v ccache >/dev/null && launcher=ccache
cmake --preset release -DVESK_TESTS=OFF -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" >/dev/null
cmake --build --preset release --parallel "$(nproc)" \
    --target vesk.cursclient vesk.server vesk.simstation vesk.peer
bin=build/release/bin

server=
station=
dir=$(mktemp -d)
finish() {
    status=$?
    trap - EXIT HUP INT QUIT TERM
    for pid in $station $server; do
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    done
    rm -rf "$dir"
    exit "$status"
}
trap finish EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 131' QUIT
trap 'exit 143' TERM

fail() {
    echo "demo.sh: $1" >&2
    for log in "$dir"/*.log; do
        echo "--- $(basename "$log")" >&2
        cat "$log" >&2
    done
    exit 1
}

export VESK_SOCKET="$dir/run/server.sock"

# In the background an interactive Ctrl-C is not for them: they end when the console has ended.
"$bin/vesk.server" </dev/null >"$dir/server.log" 2>&1 &
server=$!
tries=100
while [ ! -S "$VESK_SOCKET" ]; do
    kill -0 "$server" 2>/dev/null || fail "the server did not start"
    tries=$((tries - 1))
    [ "$tries" -gt 0 ] || fail "the server does not listen"
    sleep 0.1
done

"$bin/vesk.simstation" --average 10 </dev/null >"$dir/simstation.log" 2>&1 &
station=$!

cp scripts/demo.conf "$dir/console.conf"
status=0
"$bin/vesk.cursclient" -c "$dir/console.conf" "$@" || status=$?
kill -0 "$station" 2>/dev/null || fail "the simulated station ended early"
[ "$status" -eq 0 ] || fail "the console ended with status $status"
