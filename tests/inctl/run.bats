#!/usr/bin/env bats
# Configurations: refused whole, or live until a signal; and the tour.

load common

# refused TEXT PATTERN...: the configuration is refused, its lines match the patterns one by one, nothing is started.
refused() {
    local file="$BATS_TEST_TMPDIR/bad.json"
    printf '%s' "$1" >"$file"
    shift
    run "$INCTL" run "$file" --for 0
    local i=0
    for pattern in "$@"; do
        if [ "$status" -ne 3 ] || ! grep -Eq "^$file:$pattern" <<<"${lines[$i]}"; then
            printf 'expected line %s: %s\ngot %s with:\n%s\n' "$i" "$pattern" "$status" "$output"
            return 1
        fi
        i=$((i + 1))
    done
    [ "${#lines[@]}" -eq "$i" ]
}

@test "a bad configuration names every place, and nothing starts" {
    refused '{"objects": {' '1:14: error: '
    refused $'{"objects": {\n  "a": {"sort": "IN_STACK", "config": {}},\n  "a": {"sort": "IN_STACK", "config": {}}\n}}' '3:[0-9]+: error: .*a'
    refused $'{"objects": {\n  "a": {"sort": "IN_STAK", "config": {}}\n}}' '2:[0-9]+: error: a.*IN_STAK'
    refused $'{"objects": {"a": {"sort": "IN_STACK", "config": {\n  "adress": "10.0.0.1",\n  "addressVersion": "IN_ADDRESS_VERSION_5",\n  "udpOptions": {"portRange": {"firstPort": 0, "count": 10}}\n}}}}' \
        '2:3: error: a\.adress: ' '3:[0-9]+: error: a\.addressVersion: ' '4:[0-9]+: error: a\.udpOptions\.portRange\.firstPort: '
    run "$INCTL" run "$BATS_TEST_TMPDIR/none.json"
    [ "$status" -eq 3 ]
    mkfifo "$BATS_TEST_TMPDIR/pipe"
    expect 3 'pipe:1:1: error: cannot be read \(not a regular file\)' run "$BATS_TEST_TMPDIR/pipe"
}

@test "the examples run and end on SIGINT, SIGTERM and by time" {
    for signal in INT TERM; do
        start run "$EXAMPLES/sip.json"
        await 'maintenance +IN_STACK +up +inStackAddress='
        finish "$signal" 0
        grep -Eq 'media-qos +IN_QOS_STACK +ready' "$log"
        grep -Eq '  ending after' "$log"
    done
    expect_json 0 '(map(select(.event == "status")) | length) == 3
                   and any(.[]; .name == "loopback" and .up and .items.inStackAddress == "127.0.0.1")' \
        run "$EXAMPLES/tour.json" --for 0.1 --json
}

# Returns when the program that was started waits in the system for something.
asleep() {
    until grep -q '^State:.S' "/proc/$started/status"; do sleep 0.01; done
}

@test "SIGTERM ends the program while nobody opens its trace, and while nobody reads its output" {
    local pipe="$BATS_TEST_TMPDIR/pipe"
    mkfifo "$pipe"
    start run "$EXAMPLES/tour.json" --trace="$pipe"
    asleep
    finish TERM 143
    exec 4<>"$pipe"
    "$INCTL" udp send 127.0.0.1:9 x --count 1000000 --interval 0 >"$pipe" 2>"$log" 3>&- &
    started=$!
    # Full, once it takes not one byte more.
    while dd if=/dev/zero of="$pipe" bs=1 count=1 conv=notrunc oflag=nonblock 2>/dev/null; do sleep 0.01; done
    asleep
    finish TERM 0
    exec 4>&-
}

@test "traces go to a file, as text or JSON" {
    local trace="$BATS_TEST_TMPDIR/trace"
    expect 0 ending run "$EXAMPLES/tour.json" --for 0 --trace="$trace.json" --trace-format json
    jq -es 'any(.[]; .name == "IN_STACK" and .event == "property" or .event == "configuration")' "$trace.json"
    expect 0 ending run "$EXAMPLES/tour.json" --for 0 --trace="$trace.txt"
    grep -Eq '"displayName": "lo", .*"layer2Addresses": \[\]' "$trace.txt"
    jq -es '[.[].store? | select(.displayName? == "lo").layer2Addresses] | length > 0 and all(. == [])' "$trace.json"
    grep -Eq '^[0-9T:.-]+Z IN_STACK#[0-9]+  \[in___StackImpHalt\(\)\]' "$trace.txt"
    expect 0 'IN_STACK#' run "$EXAMPLES/tour.json" --for 0 --trace
    expect 5 'trace' run "$EXAMPLES/tour.json" --for 0 --trace="$BATS_TEST_TMPDIR"
}

@test "the tour shows the main job, also where there is only loopback" {
    local filter='.[0] | .exchange.sent == 10000 and .exchange.lost == 0
        and .marking.receivedLayer3Tos == 184 and .marking.socketLayer3Tos == 184 and .marking.socketLayer2Pcp == 5
        and .rtpUdpAddress.port % 2 == 0 and (.traces | length) > 3'
    local names='.[0].names | ([.checks[].permitted] == [true, true, false] and .srvs[0].addresses == ["192.0.2.10", "2001:db8::10"])'
    expect_json 0 "$filter" tour --json
    expect 0 'is closed, every thread has ended' tour "$EXAMPLES/tour.json"
    if [ "$(id -u)" -eq 0 ]; then
        own_host
        start tour
        finish "" 0
        expect_json 0 "$names" tour --json
        # An ordinary user has it from a user namespace, or is told why not.
        setpriv --reuid=65534 --regid=65534 --clear-groups "$INCTL" tour --json >"$BATS_TEST_TMPDIR/user"
        jq -es "(.[0].names.leftOut // \"\" | contains(\"permits no namespaces\")) or ($names)" "$BATS_TEST_TMPDIR/user"
    fi
}
