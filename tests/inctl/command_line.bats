#!/usr/bin/env bats
# Usage, help, version: what the command line says before anything happens.

load common

@test "wrong usage ends with 2 and names what was probably meant" {
    expect 2 'sub-command interfcaes; did you mean interfaces' interfcaes
    expect 2 'sub-command snd; did you mean send' udp snd
    expect 2 'option --wathc; did you mean --watch' interfaces --wathc
    expect 2 'option --cuont; did you mean --count' udp receive --cuont 3
    expect 2 'option --jsno; did you mean --json' version --jsno=pretty
    expect 2 'unknown option --zzzzzzz$' version --zzzzzzz
    expect 2 'unexpected argument lo1' interfaces lo lo1
    expect 2 'sub-command is missing; there are send and receive' udp
    expect 2 'json' version --json=neat
    expect 2 'FILE is required' run
    expect 2 'say what to send' udp send 127.0.0.1:9
    expect 2 'say what to send' udp send 127.0.0.1:9 text --size 3
    expect 2 'is not HOST:PORT' udp send 127.0.0.1 text
    expect 2 'brackets' udp send ::1:9 text
    expect 2 'port must be 1..65535' udp send 127.0.0.1:65536 text
    expect 2 'port must be 1..65535' udp send 127.0.0.1:0 text
    expect 2 'at most 65507 bytes' udp send 127.0.0.1:9 --size 65508
    expect 2 'no IP address' udp receive --address 10.0.0
    expect 2 'not FIRST-LAST' udp receive --ports 20-10
    expect 2 'excludes|exclude' udp receive --group 239.1.2.3 --echo
    expect 2 'needs --port' udp receive --group 239.1.2.3
    expect 2 'no multicast address' udp receive --group 10.0.0.1 --port 5004
    expect 2 'even' udp receive --rtp --port 5005
    local other
    for other in '--address 127.0.0.1' '--ports 20-30' '--from-stack a:b' '--qos voice' '--tos 0'; do
        expect 2 'excludes|exclude' udp receive --group 239.1.2.3 --port 5004 $other
    done
    expect 2 'excludes|exclude' udp receive --rtp --port 5004 --ports 20-30
    expect 2 'excludes|exclude' udp send 127.0.0.1:9 text --port 5004 --ports 20-30
    expect 2 'not both' udp receive --rtp --port 5004 --from-stack "$EXAMPLES/tour.json:loopback"
    expect 2 'at most 65507 bytes' udp send 127.0.0.1:9 --file /dev/zero
    for other in nan -1 2e9 inf 1s; do
        expect 2 'not a number of seconds' run "$EXAMPLES/tour.json" --for "$other"
    done
    expect 2 'FILE:OBJECT' udp receive --from-stack "$EXAMPLES/sip.json"
    expect 2 'fax' udp send 127.0.0.1:9 text --qos fax
    for other in '--trace-format json' --trace-packets; do
        expect 2 "${other%% *} requires --trace" run "$EXAMPLES/tour.json" --for 0 $other
    done
    # Nobody to tell changes nothing about what is told.
    for other in interfcaes ''; do
        run bash -c '"$INCTL" $0 >/dev/full 2>&1' "$other"
        [ "$status" -eq 2 ]
    done
}

@test "help teaches: examples and exit codes" {
    expect 0 'inctl tour' --help
    for command in interfaces dns-servers resolve "udp send" "udp receive" run tour check "explain x stack" "explain x peer" "filter check" doctor completion version; do
        expect 0 '^  inctl '"${command% x *}" $command --help
        grep -q '4 not permitted' <<<"$output"
    done
}

@test "results in JSON" {
    expect_json 0 '.[0].name == "in" and (.[0].modules | length) == 8' version --json
    expect_json 2 '.[0].error | contains("watch")' interfaces --wathc --json
    expect_json 0 '.[0].interfaces | any(.[]; .identifier == "lo" and .state.layer2Mtu == 65536 and .state.layer2Addresses == [])' interfaces --json=pretty
    expect_json 1 '.[0].error | contains("lx")' interfaces lx --json
    run "$INCTL" version --json=short
    [ "${#lines[@]}" -eq 1 ]
}

@test "interfaces: a table, one of them, none" {
    expect 0 '^NAME +STATE +MAC +MTU +SPEED +ADDRESSES +NETWORKS' interfaces
    expect 0 '^lo +up +- +65536 +- +127\.0\.0\.1' interfaces lo
    expect 1 'no interface is named ll; did you mean lo' interfaces ll
    start interfaces lo --watch
    await 'Ctrl-C'
    finish INT 0
}

@test "interfaces: changes as they happen" {
    [ "$(id -u)" -eq 0 ] || skip "needs a network namespace"
    own_host
    "${inside[@]}" ip link add one type veth peer name two
    start interfaces --watch
    await 'Ctrl-C'
    "${inside[@]}" ip address add 10.7.7.7/24 dev one
    "${inside[@]}" ip link set one up
    "${inside[@]}" ip link add three type veth peer name four
    await ' changed +one +up.* 10\.7\.7\.7'
    await ' added +three +down'
    "${inside[@]}" ip link del one
    await ' ended +one'
    finish INT 0
}

@test "dns-servers agrees with the resolver's file" {
    grep -E '^nameserver' /etc/resolv.conf | sed -E 's/^nameserver[[:space:]]*//; s/[[:space:]]*$//' | sort -u >"$BATS_TEST_TMPDIR/expected" || true
    "$INCTL" dns-servers --json | jq -r '.dnsServers[]?' | sort -u >"$BATS_TEST_TMPDIR/got"
    diff "$BATS_TEST_TMPDIR/expected" "$BATS_TEST_TMPDIR/got"
}
