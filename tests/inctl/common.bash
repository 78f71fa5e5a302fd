# What the tests of inctl share. INCTL is the program, EXAMPLES the folder of example configurations, MANUAL the
# folder of manual pages.

setup() {
    : "${INCTL:?the program to test}" "${EXAMPLES:?the folder of examples}" "${MANUAL:?the folder of manual pages}"
    export NO_COLOR=1 LC_ALL=C.UTF-8
    export RUNTIME_DIRECTORY="$BATS_TEST_TMPDIR/run" # hosts of other tests are not in the way
    started="" host="" listener="" inside=()
}

teardown() {
    if [ -n "$started" ] && kill -0 "$started" 2>/dev/null; then
        kill -KILL "$started"
        wait "$started" || true
    fi
    if [ -n "$host" ]; then kill "$host"; fi
    if [ -n "$listener" ]; then kill "$listener"; fi
}

# Makes a host of its own, with loopback up; commands behind "${inside[@]}", and start, run there.
own_host() {
    unshare --net sleep 600 3>&- &
    host=$!
    until [ "$(readlink "/proc/$host/ns/net")" != "$(readlink /proc/self/ns/net)" ]; do sleep 0.01; done
    inside=(nsenter "--net=/proc/$host/ns/net")
    "${inside[@]}" ip link set lo up
}

# expect CODE PATTERN ARGUMENTS...: runs the program; its exit code and a regular expression that its output holds.
expect() {
    local code=$1 pattern=$2
    shift 2
    run "$INCTL" "$@"
    if [ "$status" -ne "$code" ] || ! grep -Eq -- "$pattern" <<<"$output"; then
        printf 'inctl %s\nexpected %s with: %s\ngot %s with:\n%s\n' "$*" "$code" "$pattern" "$status" "$output"
        return 1
    fi
}

# expect_json CODE FILTER ARGUMENTS...: standard output is JSON, of which the filter holds for the objects together.
expect_json() {
    local code=$1 filter=$2 got=0
    shift 2
    "$INCTL" "$@" >"$BATS_TEST_TMPDIR/json" 2>/dev/null || got=$?
    if [ "$got" -ne "$code" ] || ! jq -e . "$BATS_TEST_TMPDIR/json" >/dev/null \
        || ! jq -es "$filter" "$BATS_TEST_TMPDIR/json" >/dev/null; then
        printf 'inctl %s\nexpected %s with: %s\ngot %s with:\n' "$*" "$code" "$filter" "$got"
        cat "$BATS_TEST_TMPDIR/json"
        return 1
    fi
}

# start ARGUMENTS...: runs the program beside the test, its output in $log.
start() {
    log="$BATS_TEST_TMPDIR/log"
    : >"$log"
    "${inside[@]}" "$INCTL" "$@" >"$log" 2>&1 3>&- &
    started=$!
}

# await PATTERN [FILE]: returns when the program that was started has printed it, or it stands in the file; fails when
# the program ends before, or hangs.
await() {
    local file="${2:-$log}"
    grep -Eqm1 -- "$1" <(timeout 60 tail -s 0.02 --pid="$started" -n +1 -f "$file" 2>/dev/null) || { cat "$file"; return 1; }
}

# listen SOCKET FILE: takes the datagrams that come to a UNIX socket, a line each, line feeds as blanks; the teardown
# ends it.
listen() {
    python3 -c 'if True:
        import socket, sys
        taken = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        taken.bind(sys.argv[1])
        while True:
            print(taken.recv(1 << 20).decode(errors="replace").replace("\n", " "), flush=True)' "$1" >"$2" 3>&- &
    listener=$!
    until [ -S "$1" ]; do sleep 0.01; done
}

# finish SIGNAL CODE: ends the program that was started.
finish() {
    local got=0
    if [ -n "$1" ]; then kill "-$1" "$started"; fi
    timeout 60 tail -s 0.02 --pid="$started" -f /dev/null || kill -KILL "$started"
    wait "$started" || got=$?
    started=""
    [ "$got" -eq "$2" ] || { echo "exit code $got"; cat "$log"; return 1; }
}

# The endpoint that a receiver has said it listens on.
endpoint() {
    sed -n 's/^Listening on \([^ ]*\).*/\1/p' "$log" | head -n "${1:-1}" | tail -n 1
}
