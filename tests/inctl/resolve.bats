#!/usr/bin/env bats
# inctl resolve: names asked of a name server on a host of its own, and what it says when there is no answer.

load common

# A host whose resolver asks a server with a few names; inside runs a command there.
names_host() {
    [ "$(id -u)" -eq 0 ] || skip "needs namespaces"
    own_host
    local files=$BATS_TEST_TMPDIR
    printf 'nameserver 127.0.0.1\noptions timeout:1 attempts:1\n' >"$files/resolv.conf"
    printf 'hosts: files dns\n' >"$files/nsswitch.conf"
    : >"$files/hosts"
    cat >"$files/enter" <<'END'
#!/bin/sh
for name in resolv.conf nsswitch.conf hosts; do [ ! -e "/etc/$name" ] || mount --bind "$0.d/$name" "/etc/$name"; done
exec "$@"
END
    chmod +x "$files/enter"
    ln -s . "$files/enter.d"
    "${inside[@]}" dnsmasq -k -C /dev/null --no-resolv --no-hosts --listen-address=127.0.0.1 --bind-interfaces \
        --pid-file= --user=root --log-facility=- --local=/test/ --local=/arpa/ --host-record=pbx.example.test,192.0.2.10,2001:db8::10 \
        --txt-record=text.example.test,nothing --srv-host=_sip._udp.example.test,pbx.example.test,5060,10,50 \
        --srv-host=_sip._udp.example.test,spare.example.test,5070,20,0 --srv-host=_none._udp.example.test \
        --ptr-record=11.2.0.192.in-addr.arpa,eleven.example.test >"$files/server.log" 2>&1 3>&- &
    started=$!
    until grep -q started "$files/server.log"; do kill -0 "$started"; sleep 0.01; done
    inside+=(unshare --mount "$files/enter")
}

# resolves CODE PATTERN ARGUMENTS...: like expect, on that host.
resolves() {
    local code=$1 pattern=$2
    shift 2
    run "${inside[@]}" "$INCTL" resolve "$@"
    if [ "$status" -ne "$code" ] || ! grep -Eq -- "$pattern" <<<"$output"; then
        printf 'resolve %s\nexpected %s with: %s\ngot %s with:\n%s\n' "$*" "$code" "$pattern" "$status" "$output"
        return 1
    fi
}

@test "resolve: addresses, names and services, and why there are none" {
    names_host
    resolves 0 '^192\.0\.2\.10$' pbx.example.test
    resolves 0 '^2 addresses in [0-9.]+ ms$' pbx.example.test
    resolves 0 '^eleven\.example\.test$' --ptr 192.0.2.11
    resolves 1 '^inctl: there is no name for 192\.0\.2\.12: the resolver gives the address itself' --ptr 192.0.2.12
    [ "${#lines[@]}" -eq 1 ] # and not the address where a name is expected
    run "${inside[@]}" "$INCTL" resolve --json --ptr 192.0.2.12
    [ "$status" -eq 1 ]
    grep -v '^inctl:' <<<"$output" | jq -es '.[0].numeric and .[0].domainNames == ["192.0.2.12"] and (.[1].error | length) > 0'
    resolves 0 '^ *1 +10 +50 +5060 +pbx\.example\.test' --srv _sip._udp.example.test
    resolves 0 '^ *2 +20 +0 +5070 +spare\.example\.test' --srv _sip._udp.example.test
    resolves 1 'there is no name gone\.test, as far as the resolver can tell \(NXDOMAIN, or no usable answer\)' gone.test
    resolves 1 'there is no name gone\\999.test \(NXDOMAIN\)$' --srv 'gone\999.test' # a backslash is a character like others
    resolves 1 'there is no name _gone\._udp\.test \(NXDOMAIN\)' --srv _gone._udp.test
    resolves 1 'is a name, but has no addresses' text.example.test
    resolves 1 'no name server gave an answer about host\.elsewhere' host.elsewhere
    "${inside[@]}" "$INCTL" resolve --json --srv _sip._udp.example.test |
        jq -e '.service == "_sip._udp.example.test" and .srvs[0] == {priority: 10, weight: 50, port: 5060, target: "pbx.example.test"}
               and (.milliseconds | type) == "number"'
    "${inside[@]}" "$INCTL" resolve --json pbx.example.test | jq -e '.addresses == ["192.0.2.10", "2001:db8::10"]'
    run "${inside[@]}" "$INCTL" resolve --json gone.test
    [ "$status" -eq 1 ]
    grep -Eq '"failure": ?"IN_DNS_QUERY_FAILURE_NO_NAME"' <<<"$output"

    # The server stopped takes questions and answers none.
    kill -STOP "$started"
    resolves 1 'time-out: nothing has answered about pbx\.example\.test within 50 ms' pbx.example.test --timeout 50
    resolves 1 'no name server gave an answer about _sip\._udp' --srv _sip._udp.example.test
    local file="$BATS_TEST_TMPDIR/stack.json"
    echo '{"objects": {"quiet": {"sort": "IN_STACK", "config": {"dnsOptions": {"disableQueryAddresses": true}}}}}' >"$file"
    resolves 1 "refused by configuration: the stack's dnsOptions have disableQueryAddresses" pbx.example.test --stack "$file:quiet"
}

# A name server for SRV questions with one target for an answer, its labels as Python writes them.
odd_server() {
    names_host
    "${inside[@]}" python3 -c 'if True:
        import socket, struct, sys
        s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        s.bind(("127.0.0.2", 53))
        target = b"".join(bytes([len(l)]) + l for l in eval(sys.argv[1])) + b"\0"
        data = struct.pack("!HHH", 10, 50, 5060) + target
        print("ready", flush=True)
        while True:
            question, peer = s.recvfrom(512)
            s.sendto(question[:2] + b"\x85\x80\0\1\0\1\0\0\0\0" + question[12:] + b"\xc0\x0c\0\x21\0\1\0\0\0\x3c"
                     + struct.pack("!H", len(data)) + data, peer)' "$1" >"$BATS_TEST_TMPDIR/odd.log" 3>&- &
    listener=$!
    await ready "$BATS_TEST_TMPDIR/odd.log"
    printf 'nameserver 127.0.0.2\noptions timeout:1 attempts:1\n' >"$BATS_TEST_TMPDIR/resolv.conf"
}

@test "what a name server says does not steer the terminal" {
    odd_server '[b"a\0b\n\x1b[31m", b"test"]'
    local file="$BATS_TEST_TMPDIR/filter.json"
    echo '{"objects": {"lo": {"sort": "IN_STACK", "config": {"flags": "IN_FLAG_LOOPBACK_ONLY", "addressVersion": "IN_ADDRESS_VERSION_4"}},
        "peers": {"sort": "IN_FILTER", "config": {"stackName": "lo", "entries": [
            {"host": "a.test", "flags": "IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV", "dnsSrvPrefixes": ["_s"]},
            {"host": "10.0.0.0", "flags": "IN_FILTER_ENTRY_FLAG_ADDRESS", "addressMatchingBits": 24}]}}}}' >"$file"
    resolves 0 'a\?b\?\?\[31m\.test *$' --srv _s.a.test
    "${inside[@]}" "$INCTL" resolve --srv _s.a.test --json | jq -e '.srvs[0].target == "a\u0000b\n\u001b[31m.test"'
    run "${inside[@]}" "$INCTL" filter check "$file" peers 10.0.3.7
    grep -Fq 'a?b??[31m.test' <<<"$output"
    run "${inside[@]}" "$INCTL" explain "$file" peer peers 10.0.3.7
    [ "$(grep -Fc 'a?b??[31m.test' <<<"$output")" -eq 2 ]
    [[ "$output" != *$'\e'* ]]
    "${inside[@]}" "$INCTL" run "$file" --name odd >"$BATS_TEST_TMPDIR/run.log" 2>&1 3>&- &
    local runs=$!
    until "$INCTL" status peers --host odd >"$BATS_TEST_TMPDIR/status" 2>&1 && grep -Fq 'a?b??[31m.test: ' "$BATS_TEST_TMPDIR/status"; do
        kill -0 "$runs"
        sleep 0.02
    done
    kill "$runs"
    wait "$runs"
    expect 2 'a\?\[31m\.\.b is no domain name: label 2' resolve $'a\e[31m..b'
}

@test "resolve: a target that is no name is not shown" {
    odd_server '[b"xy"] * 400'
    resolves 0 ' too long for a name \(1199 characters\)$' --srv _s.a.test
    "${inside[@]}" "$INCTL" resolve --srv _s.a.test --json | jq -e '.srvs[0] | .targetLength == 1199 and has("target") == false'
}

@test "a look-up that goes on keeps no command from its end" {
    names_host
    kill -STOP "$started" # answers nobody
    local server=$started file="$BATS_TEST_TMPDIR/filter.json" command
    printf 'nameserver 127.0.0.1\noptions timeout:30 attempts:5\n' >"$BATS_TEST_TMPDIR/resolv.conf"
    echo '{"objects": {"lo": {"sort": "IN_STACK", "config": {"flags": "IN_FLAG_LOOPBACK_ONLY", "addressVersion": "IN_ADDRESS_VERSION_4"}},
        "peers": {"sort": "IN_FILTER", "config": {"stackName": "lo", "entries": [
            {"host": "a.test", "flags": "IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES"}]}}}}' >"$file"
    inside+=(timeout --foreground 60)
    resolves 1 'time-out: nothing has answered about a\.test' a.test --timeout 50
    resolves 1 'time-out: nothing has answered about _s\.a\.test' --srv _s.a.test --timeout 50
    run "${inside[@]}" "$INCTL" filter check "$file" peers 10.0.0.1 --timeout 50
    [ "$status" -eq 1 ]
    grep -q '^10.0.0.1 refused: .*DNS has not answered within 50 ms$' <<<"$output"
    run "${inside[@]}" "$INCTL" explain "$file" peer peers 127.0.0.1 --timeout 0
    [ "$status" -eq 0 ]
    unset 'inside[-1]' 'inside[-1]' 'inside[-1]'
    for command in 'resolve a.test' 'resolve --srv _s.a.test' "filter check $file peers 10.0.0.1"; do
        start $command --timeout 3600000
        # It takes signals itself when it waits.
        until grep -Eq '^SigCgt:.*[4-7c-f].{3}$' "/proc/$started/status" && [ "/proc/$started/exe" -ef "$INCTL" ]; do
            kill -0 "$started"
            sleep 0.01
        done
        finish TERM 1
        grep -q '^inctl: interrupted while ' "$log"
    done
    started=$server
}

@test "a stack of a file is made alone, and what else the file wishes is left" {
    names_host
    local file="$BATS_TEST_TMPDIR/host.json" before
    echo '{"objects": {"lo": {"sort": "IN_STACK", "config": {"flags": "IN_FLAG_LOOPBACK_ONLY", "addressVersion": "IN_ADDRESS_VERSION_4"}},
        "up": {"sort": "IN_NW_STACK", "config": {"interfaceIdentifier": "d0", "status": true}},
        "vip": {"sort": "IN_NW_STACK", "config": {"interfaceIdentifier": "d0", "layer3UnicastAddress": "192.0.2.1", "layer3Network": "192.0.2.0/24"}}}}' >"$file"
    "${inside[@]}" ip link add d0 type veth peer name d1
    "${inside[@]}" ip link set d1 up
    "${inside[@]}" ip link set d0 up
    "${inside[@]}" ip address add 192.0.2.1/24 dev d0
    before=$("${inside[@]}" ip -brief -4 address show d0)
    resolves 0 '^192\.0\.2\.10$' pbx.example.test --stack "$file:lo"
    "${inside[@]}" "$INCTL" udp send 127.0.0.1:9 x --from-stack "$file:lo"
    [ "$("${inside[@]}" ip -brief -4 address show d0)" = "$before" ]
}

@test "resolve: names that are none" {
    expect 2 'label 2, "", is empty' resolve a..b
    expect 2 'label 1, "", is empty' resolve .a
    expect 2 'label 1, "a{64}", has 64 characters, and 63 are allowed' resolve "$(printf 'a%.0s' {1..64}).b"
    expect 2 'label 2, ".", has characters that no domain name may have' resolve $'a.\xee\x80\x80'
    expect 2 'label 1, "a.", stands for a\.\.\., which is no label' resolve $'a\xe2\x80\xa6'
    expect 2 'it has 255 characters in ASCII form' resolve "$(printf 'aaaaaaa.%.0s' {1..32})"
    expect 2 '--ptr: a is no IP address' resolve --ptr a
    expect 2 'NAME, --ptr or --srv' resolve
    expect 2 '::1 is an address; for its name: inctl resolve --ptr ::1$' resolve ::1
    expect 2 '--stack: x is not FILE:OBJECT' resolve a --stack x
}
