#!/usr/bin/env bats
# Datagrams on loopback, and what is said when a socket does not open. Ports are chosen by the system.

load common

# Without any capability, whoever runs the tests; the user stays, who alone may be able to read the tree.
unprivileged() {
    if [ "$(id -u)" -eq 0 ]; then
        run setpriv --bounding-set=-all --inh-caps=-all "$@"
    else
        run "$@"
    fi
}

@test "a datagram goes there and back, IPv4 and IPv6" {
    for address in 127.0.0.1 ::1; do
        start udp receive --address "$address" --echo --count 3
        await 'Listening on'
        expect 0 '3 datagrams sent, 3 answered' udp send "$(endpoint)" hello --count 3 --interval 0 --wait-reply 5000
        grep -Eq 'reply 5 bytes from .* 68 65 6c 6c 6f +\|hello\|' <<<"$output"
        finish "" 0
        grep -Eq '^3 datagrams, 15 bytes, from [13] peers?' "$log"
    done
}

@test "what was sent is what is shown" {
    start udp receive --address 127.0.0.1 --count 3 --json
    await listening
    local to
    to=$(jq -r 'select(.event == "listening").localUdpAddress | .address + ":" + (.port | tostring)' "$log" | head -1)
    printf 'from a file' >"$BATS_TEST_TMPDIR/payload"
    expect_json 0 '.[0].byteCount == 11 and .[1].datagrams == 1' udp send "$to" --file "$BATS_TEST_TMPDIR/payload" --json
    expect 0 'sent 258 bytes' udp send "$to" --size 258
    expect 0 'sent 0 bytes' udp send "$to" ''
    finish "" 0
    jq -es '[.[] | select(.event == "received").payload] | sort_by(length)
            | .[0] == "" and .[1] == "66726f6d20612066696c65" and (.[2] | length == 516 and startswith("000102") and endswith("ff0001"))' "$log"
}

@test "RTP and RTCP are heard apart, on neighbouring ports" {
    start udp receive --address 127.0.0.1 --rtp --count 2
    await 'for rtcp'
    local rtp rtcp
    rtp=$(endpoint 1) rtcp=$(endpoint 2)
    [ $(( ${rtp##*:} % 2 )) -eq 0 ]
    [ "${rtcp##*:}" -eq $(( ${rtp##*:} + 1 )) ]
    expect 0 sent udp send "$rtp" media
    await '  rtp .*\|media\|'
    expect 0 sent udp send "$rtcp" report
    finish "" 0
    grep -Eq '  rtcp .*\|report\|' "$log"
}

@test "a stack of a configuration file gives its address and range" {
    start udp receive --from-stack "$EXAMPLES/tour.json:loopback"
    await 'Listening on 127\.0\.0\.1:30[0-9]{3}$'
    finish TERM 0
    expect 1 'no IN_STACK is named lopback; did you mean loopback' udp receive --from-stack "$EXAMPLES/tour.json:lopback"
}

@test "a multicast group" {
    start udp receive --group 239.255.77.1 --port 30999 --interface lo --count 1 --json
    await listening
    expect 0 'sent' udp send 239.255.77.1:30999 all --interface lo
    finish "" 0
    jq -es '.[0].localUdpAddress.address == "239.255.77.1" and .[1].payload == "616c6c" and .[2].datagrams == 1' "$log"
    expect 1 'no interface is named lx' udp receive --group 239.1.2.3 --port 30999 --interface lx
}

@test "no answer is a no" {
    expect 1 '^0 datagrams' udp receive --address 127.0.0.1 --timeout 1
    start udp receive --address 127.0.0.1
    await 'Listening on'
    expect_json 1 '.[1].event == "noReply" and .[2].replies == 0' udp send "$(endpoint)" x --wait-reply 1 --json
    finish INT 0
}

@test "why a socket does not open" {
    start udp receive --address 127.0.0.1
    await 'Listening on'
    local port
    port=$(endpoint) port=${port##*:}
    expect 5 "port $port on 127.0.0.1 is in use" udp receive --address 127.0.0.1 --port "$port"
    expect 5 "ports $port..$port on 127.0.0.1 are all in use" udp receive --address 127.0.0.1 --ports "$port-$port"
    expect 5 'hold no free even port' udp receive --address 127.0.0.1 --rtp --ports "$port-$port"
    finish INT 0
    expect 5 'no address 203.0.113.77; see: inctl interfaces' udp receive --address 203.0.113.77
    expect 1 'no interface is named lx' udp send 127.0.0.1:9 x --interface lx
    expect 5 'cannot be read' udp send 127.0.0.1:9 --file "$BATS_TEST_TMPDIR/none"
    if [ "$(cat /proc/sys/net/ipv4/ip_unprivileged_port_start)" -gt 80 ]; then
        unprivileged "$INCTL" udp receive --address 127.0.0.1 --port 80
        [ "$status" -eq 4 ]
        grep -q CAP_NET_BIND_SERVICE <<<"$output"
    fi
}
