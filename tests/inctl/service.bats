#!/usr/bin/env bats
# inctl run as a service: what the service manager is told, the journal, rotated traces, outputs that are shut.

load common

@test "the service manager is told of readiness, re-loads, refusals that stay, life and the end" {
    local file="$BATS_TEST_TMPDIR/file" told="$BATS_TEST_TMPDIR/told"
    own_host
    printf '{"objects": {"nw": {"sort": "IN_NW_STACK", "config": {"interfaceIdentifier": "d0"}}}}' >"$file"
    listen "$BATS_TEST_TMPDIR/socket" "$told"
    export NOTIFY_SOCKET="$BATS_TEST_TMPDIR/socket" WATCHDOG_USEC=100000
    start run "$file"
    await '^READY=1' "$told"
    await '^STATUS=1 object, 1 not good: nw down, no interface d0' "$told"
    for _ in 1 2 3; do # beats that go on
        : >"$told"
        await '^WATCHDOG=1' "$told"
    done
    kill -HUP "$started"
    await '^RELOADING=1 MONOTONIC_USEC=[0-9]+$' "$told"
    await '^READY=1' "$told"
    echo '{"objects"' >"$file"
    await "^STATUS=new file refused, 1 problem, $file:2:1: error: .*; what ran before goes on: 1 object, 1 not good: nw" "$told"
    "${inside[@]}" ip link add d0 type bridge # an update of another kind
    await '^STATUS=new file refused, 1 problem, .*: 1 object, all good' "$told"
    echo '{"objects": {}}' >"$file"
    await '^STATUS=0 objects, all good' "$told"
    : >"$told"
    finish TERM 0
    grep -q '^STOPPING=1' "$told"
}

@test "traces go on in a new file after a rotation, and to the journal with fields of their own" {
    local trace="$BATS_TEST_TMPDIR/trace" journal="$BATS_TEST_TMPDIR/journal"
    start run "$EXAMPLES/tour.json" --trace="$trace"
    await 'ready'
    await 'CS_CONFIGURATION#' "$trace"
    mv "$trace" "$trace.1"
    kill -HUP "$started"
    await 're-loaded'
    finish TERM 0
    ! grep -q 'inStackImpHalt' "$trace.1"
    grep -q 'in___StackImpHalt' "$trace"

    [ "$(id -u)" -eq 0 ] || skip "the journal's socket is root's"
    [ -e /run/systemd/journal/socket ] || expect 5 'journal: No such file' run "$EXAMPLES/tour.json" --trace=journal --for 0
    listen "$BATS_TEST_TMPDIR/socket" "$journal"
    unshare --mount bash -c 'mount -t tmpfs none /run && mkdir -p /run/systemd/journal && ln -s "$1" /run/systemd/journal/socket &&
        exec "$2" run "$3" --trace=journal --for 0' - "$BATS_TEST_TMPDIR/socket" "$INCTL" "$EXAMPLES/tour.json"
    grep -Eq 'MESSAGE=IN_STACK#[0-9]+  .*PRIORITY=6 .*IN_STREAM_NAME=IN_STACK .*IN_OBJECT=loopback' "$journal"
}

@test "a trace file that cannot grow loses lines, and none after it can again" {
    local trace="$BATS_TEST_TMPDIR/trace"
    echo '{"objects": {"active": {"sort": "CS_CONDITION"}}}' >"$BATS_TEST_TMPDIR/file.json"
    trap '' XFSZ
    start run "$BATS_TEST_TMPDIR/file.json" --trace="$trace" --trace-format json
    await 'active'
    expect 0 'true' set active true
    await '"csValue"' "$trace"
    local most=$(($(stat -c %s "$trace") + 10))
    prlimit --pid "$started" --fsize="$most:"
    until [ "$(stat -c %s "$trace")" -eq "$most" ]; do
        expect 0 'false' set active false
        expect 0 'true' set active true
    done
    prlimit --pid "$started" --fsize=unlimited:
    expect 0 'false' set active false
    finish TERM 0
    grep -Eq '[1-9][0-9]* trace lines? could not be written' "$log"
    [ "$(jq -Rr 'try (fromjson | "whole") catch "torn"' "$trace" | grep -c torn)" -eq 1 ]
    tail -n1 "$trace" | jq -e .
}

@test "an output that cannot be written ends a host with 5, and closed descriptors stay closed to it" {
    [ -w /dev/full ]
    local got=0
    "$INCTL" run "$EXAMPLES/tour.json" >/dev/full 2>"$BATS_TEST_TMPDIR/error" || got=$?
    [ "$got" -eq 5 ]
    grep -q 'standard output: No space left on device' "$BATS_TEST_TMPDIR/error"
    got=0
    "$INCTL" version >/dev/full 2>/dev/null || got=$?
    [ "$got" -eq 5 ]
    "$INCTL" run "$EXAMPLES/tour.json" --for 0 <&- >&- 2>&- 3>&-
    : >"$BATS_TEST_TMPDIR/trace"
    "$INCTL" run "$EXAMPLES/tour.json" --trace="$BATS_TEST_TMPDIR/trace" <&- >&- 2>&- 3>&- &
    started=$!
    await 'ready|IN_STACK#' "$BATS_TEST_TMPDIR/trace"
    for descriptor in 0 1 2; do [ "$(readlink "/proc/$started/fd/$descriptor")" = /dev/null ]; done
    log="$BATS_TEST_TMPDIR/trace"
    finish TERM 0
}

@test "on a terminal a table is kept, and the terminal comes back on every end" {
    local file="$BATS_TEST_TMPDIR/file" host_process terminal
    log="$BATS_TEST_TMPDIR/log"
    for signal in TERM ABRT USR1 HUP; do
        printf '{"objects": {"nw": {"sort": "IN_NW_STACK", "config": {"interfaceIdentifier": "eth9"}}}}' >"$file"
        : >"$log"
        TERM=xterm script -qec "stty cols 70 rows 9; exec '$INCTL' run '$file'" /dev/null >>"$log" 2>&1 </dev/null 3>&- &
        started=$!
        await $'\e\\[\\?1049h'
        await 'nw      IN_NW_STACK  down   no interface eth9'
        host_process=$(pgrep -P "$started")
        terminal=$(readlink "/proc/$host_process/fd/1")
        echo '{"objects"' >"$file"
        await "${file:0:20}" # under the table
        : >"$log"
        stty -F "$terminal" cols 40
        await 'nw      down   no interface eth9'
        : >"$log"
        if [ "$signal" = HUP ]; then # the terminal itself goes
            kill -KILL "$started" && wait "$started" || true
            timeout 60 tail --pid="$host_process" -f /dev/null
        else
            [ "$signal" != TERM ] || kill -TSTP "$host_process" # no shell is there that could continue it
            kill "-$signal" "$host_process"
            timeout 60 tail --pid="$started" -f /dev/null
            tail -c 300 "$log" | grep -q $'\e\\[?1049l'
        fi
        started=""
    done
}
