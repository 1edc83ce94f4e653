#!/bin/sh
# A station on this machine alone: installs what is missing, builds, starts a server and a simulated station
# on a private socket, and opens the console there. Everything that it started ends with it.
#
#   scripts/demo.sh [CONSOLE OPTIONS...]
#
# The demo has settings of its own, gone when it ends; `-c FILE` uses a file of yours instead. With the path of
# installed programs in VESK_BIN nothing is installed or built.
set -eu
cd "$(dirname "$0")/.."

if [ ! -t 0 ] || [ ! -t 1 ]; then
    echo "demo.sh: the console needs a terminal" >&2
    exit 1
fi

if [ -z "${VESK_BIN:-}" ]; then
    scripts/setup.sh build
    launcher=
    command -v ccache >/dev/null && launcher=ccache
    cmake --preset release -DVESK_TESTS=OFF -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" >/dev/null
    cmake --build --preset release --parallel "$(nproc)" \
        --target vesk.cursclient vesk.server vesk.simstation vesk.peer
    VESK_BIN=$PWD/build/release/bin
fi

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
"$VESK_BIN/vesk.server" </dev/null >"$dir/server.log" 2>&1 &
server=$!
tries=100
while [ ! -S "$VESK_SOCKET" ]; do
    kill -0 "$server" 2>/dev/null || fail "the server did not start"
    tries=$((tries - 1))
    [ "$tries" -gt 0 ] || fail "the server does not listen"
    sleep 0.1
done

# After an hour and some minutes every instrument is warm and has done each thing once.
"$VESK_BIN/vesk.simstation" --average 10 --warm-up 4000 </dev/null >"$dir/simstation.log" 2>&1 &
station=$!
tries=300
until grep -q "instruments connected" "$dir/simstation.log"; do
    kill -0 "$station" 2>/dev/null || fail "the simulated station did not start"
    tries=$((tries - 1))
    [ "$tries" -gt 0 ] || fail "the simulated station does not get warm"
    sleep 0.1
done

set -- -c "$dir/console.conf" "$@"
size=$(stty size 2>/dev/null || true)
[ "${size% *}" -gt 0 ] 2>/dev/null || size="24 80"
scripts/demo_layout.sh "${size% *}" "${size#* }" >"$dir/console.conf"

cat <<END_OF_TEXT
The station's socket:  $VESK_SOCKET
The programs:          $VESK_BIN
To join from another terminal, for as long as this console runs:

    export VESK_SOCKET=$VESK_SOCKET PATH=$VESK_BIN:\$PATH
    vesk.peer --monitor </dev/null

END_OF_TEXT
status=0
"$VESK_BIN/vesk.cursclient" "$@" || status=$?
kill -0 "$station" 2>/dev/null || fail "the simulated station ended early"
[ "$status" -eq 0 ] || fail "the console ended with status $status"
