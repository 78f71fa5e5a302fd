#!/usr/bin/env bats
# What is said before anything runs: check, explain, doctor, completion, manual pages.

load common

configuration() {
    file="$BATS_TEST_TMPDIR/file.json"
    printf '%s' "$1" >"$file"
}

@test "check: exit codes, one finding a line, JSON for programs" {
    expect 0 'sip\.json: good$' check "$EXAMPLES/sip.json"
    configuration '{"objects": {"a": {"sort": "IN_STACK", "config": {"dnsOptions": {"negativeCacheTimeout": 1}}}}}'
    expect 0 ':1:90: warning: a\.dnsOptions\.negativeCacheTimeout: ' check "$file"
    expect 3 'good, but 1 warning$' check "$file" --strict
    configuration '{"objects": {"a": {"sort": "IN_STACK", "config": {"adress": "10.0.0.1", "flags": "X"}}}}'
    expect 3 'bad, 2 errors$' check "$file"
    expect_json 3 '.[0] | .errors == 2 and .warnings == 0 and .diagnoses[0] == {"file": "'"$file"'", "line": 1,
        "column": 51, "severity": "error", "record": "a", "key": "adress", "what": "unknown key",
        "expected": "one of flags, interface, network, addressVersion, address, dnsOptions, tcpOptions, udpOptions",
        "nearest": "address"}' check "$file" --json
    # More than are told are counted all the same.
    configuration "{\"objects\": {$(seq -s, -f '"r%.0f": {"sort": "IN_STACK", "config": {"x": 1, "dnsOptions":
        {"negativeCacheTimeout": 1}}}' 1500)}}"
    [ "$("$INCTL" check "$file" | tail -n 1)" = "$file: bad, 1500 errors and 1500 warnings" ]
    expect_json 3 '.[0] | .errors == 1500 and .warnings == 1500 and (.diagnoses | length) == 2002' check "$file" --json
    expect 3 'none.json:1:1: error: cannot be read \(No such file' check "$BATS_TEST_TMPDIR/none.json"
    printf '{}' >"$BATS_TEST_TMPDIR/"$'caf\xe9.json'
    local command
    for command in check run migrate doctor; do
        expect 2 'json: the path is not UTF-8' "$command" "$BATS_TEST_TMPDIR/"$'caf\xe9.json'
    done
    expect 2 'FILE is required, or --schema' check
    expect 2 'excludes|exclude' check "$file" --schema
    expect_json 0 '.[0]."$schema" == "https://json-schema.org/draft/2020-12/schema"' check --schema
}

@test "check --online and explain: what this host makes of a file" {
    [ "$(id -u)" -eq 0 ] || skip "needs a network namespace"
    own_host
    "${inside[@]}" ip link add one type veth peer name peer
    "${inside[@]}" sysctl -q net.ipv6.conf.one.disable_ipv6=1 net.ipv6.conf.peer.disable_ipv6=1
    "${inside[@]}" ip link set one up
    "${inside[@]}" ip address add 10.7.7.7/24 dev one
    "${inside[@]}" ip address add 10.8.8.8/24 dev one
    configuration '{"objects": {
        "any": {"sort": "IN_STACK"},
        "net": {"sort": "IN_STACK", "config": {"network": "10.8.0.0/16"}},
        "narrow": {"sort": "IN_STACK", "config": {"addressVersion": "IN_ADDRESS_VERSION_4", "network": "10.9.0.0/16"}},
        "gone": {"sort": "IN_STACK", "config": {"interface": "ome"}},
        "ip": {"sort": "IN_NW_STACK", "config": {"interfaceIdentifier": "two", "layer3UnicastAddress": "10.7.7.8"}},
        "rtp": {"sort": "IN_STACK", "config": {"udpOptions": {"portRange": {"firstPort": 40000, "count": 100}}}}}}'
    on_host() { "${inside[@]}" "$INCTL" "$@"; }
    run on_host check "$file" --online
    [ "$status" -eq 0 ]
    local expected
    for expected in '4:104: warning: narrow.network: admits no address' '5:62: warning: gone.interface: .*mean "one"' \
        '6:73: warning: ip.interfaceIdentifier: this host has no' \
        '7:63: warning: rtp.udpOptions.portRange: overlaps .*net.ipv4.ip_local_reserved_ports to 40000-40099'; do
        grep -Eq "$expected" <<<"$output" || { echo "no $expected in $output"; return 1; }
    done
    [ "${#lines[@]}" -eq 5 ]
    expect 0 'good$' check "$file"

    on_host explain "$file" stack any --json | jq -e '.choice | .address == "10.7.7.7" and .primaryInterface == "one"
        and .interfaces == ["one"] and ([.candidates[] | select(.excludedBy != [])] == [])
        and ([.candidates[] | select(.class == "loopback").score] | unique == [2])'
    on_host explain "$file" stack net --json | jq -e '.choice | .address == "10.8.8.8"
        and (.candidates | map(select(.address != "10.8.8.8")) | all(.excludedBy == ["network"]))'
    run on_host explain "$file" stack net
    grep -Eq '^10\.7\.7\.7 +one +other +excluded by network' <<<"$output"
    grep -Eq '^10\.8\.8\.8 +one +other +chosen' <<<"$output"
    run on_host explain "$file" stack gone
    [ "$status" -eq 1 ]
    grep -Eq '127\.0\.0\.1 .*excluded by interface' <<<"$output"
    grep -q 'no interface is named ome; did you mean one' <<<"$output"
    run on_host explain "$file" stack narow
    [ "$status" -eq 1 ]
    grep -q 'did you mean narrow' <<<"$output"
    # What the explanation says is what a stack of the file does.
    run on_host run "$file" --for 0
    grep -Eq ' net +IN_STACK +up +.*inStackAddress=10\.8\.8\.8' <<<"$output"
}

@test "doctor: says what is missing, and what to do" {
    expect_json '[01]' '.[0].checks | length > 9 and all(.[]; .state == "good" or .remedy != null)' doctor --json
    run env PATH=/nowhere "$INCTL" doctor
    [ "$status" -eq 1 ]
    grep -Eq '^ping +bad +is not in PATH' <<<"$output"
    grep -q 'apt-get install iputils-ping' <<<"$output"
    run bash -c "ulimit -Sn 1000 && '$INCTL' doctor"
    grep -Eq '^descriptors +bad +1000, too few for 16384' <<<"$output"
    configuration '{"objects": {"a": {"sort": "IN_STACK", "config": {"interface": "nowhere-0"}}}}'
    expect 1 'configuration +bad .*:1:64: warning: a\.interface: this host has no' doctor "$file"
    [ "$(id -u)" -eq 0 ] || skip "needs capabilities to take away"
    run setpriv --bounding-set=-all --inh-caps=-all "$INCTL" doctor
    [ "$status" -eq 1 ]
    for expected in '^CAP_NET_ADMIN +bad' 'AmbientCapabilities=CAP_NET_RAW' '^socket priority +bad .*SO_PRIORITY 7 is refused'; do
        grep -Eq "$expected" <<<"$output"
    done
}

# completes WORDS... -- EXPECTED...: what bash offers for the last word.
completes() {
    local words=()
    while [ "$1" != -- ]; do words+=("$1"); shift; done
    shift
    local got
    got=$(cd "$EXAMPLES" && bash --norc -c '
        source <("$INCTL" completion bash)
        COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
        $(complete -p inctl | sed "s/.*-F \([^ ]*\).*/\1/") inctl "${COMP_WORDS[COMP_CWORD]}"
        printf "%s\n" "${COMPREPLY[@]}" | sort' bash "${words[@]}" | tr '\n' ' ')
    [ "$got" = "$(printf '%s\n' "$@" | sort | tr '\n' ' ')" ] || { echo "for ${words[*]}: $got"; return 1; }
}

@test "completion: really completed by bash" {
    completes inctl doc -- doctor
    completes inctl udp '' -- send receive
    completes inctl udp send --wait -- --wait-reply
    completes inctl udp send --qos v -- voice
    completes inctl udp receive --interface l -- lo
    completes inctl run --json = '' -- short pretty
    completes inctl run s -- sip.json
    completes inctl run sip.json --trace-format '' -- json text
    completes inctl explain sip.json st -- stack
    completes inctl filter ch -- check
    completes inctl completion '' -- bash
    completes inctl run --for 1 --trace- -- --trace-format --trace-packets
    [ -z "$("$INCTL" completion bash | grep manual)" ]
}

# Every sub-command, and those inside it; "x" stands for the file that comes before those of explain.
commands() {
    local name
    [ "$#" -lt 4 ] || return 0
    for name in $("$INCTL" "$@" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p'); do
        echo "$@" "$name"
        if [ "$name" = explain ]; then commands explain x; else commands "$@" "$name"; fi
    done
}

@test "manual pages: without a fault, every option and every key" {
    local page command option pages="$MANUAL"
    for page in inctl.1 in.json.5 in.7; do
        [ -z "$(cd "$pages" && mandoc -T lint "$page" 2>&1)" ] # it looks for what is referred to there
        [ -z "$(groff -mdoc -ww -Tutf8 "$pages/$page" 2>&1 >/dev/null)" ]
    done
    mandoc -T ascii "$pages/inctl.1" | col -bx >"$BATS_TEST_TMPDIR/inctl.txt"
    local known=0
    while read -r command; do
        # The part of the page from this command to the next.
        sed -n "/^     inctl ${command/ x / FILE }\( \|$\)/,/^     inctl /p" "$BATS_TEST_TMPDIR/inctl.txt" >"$BATS_TEST_TMPDIR/part"
        for option in $("$INCTL" $command --help | grep -Eo '^  (-.,)?--[a-z-]+' | grep -Eo -- '--[a-z-]+'); do
            grep -Eq -- "(^| )$option([ =[]|$)" "$BATS_TEST_TMPDIR/part" || { echo "$command $option"; return 1; }
            known=$((known + 1))
        done
    done < <(commands)
    [ "$known" -gt 50 ]
    mandoc -T ascii "$pages/in.json.5" | col -bx >"$BATS_TEST_TMPDIR/keys.txt"
    "$INCTL" check --schema | jq -r '.["$defs"] | to_entries[] | select(.key != "record") | .key,
        (.value | [paths(type == "object" and has("description"))[] | strings] | unique[])' |
        grep -Ev '^(properties|items|allOf|anyOf)$' | sort -u >"$BATS_TEST_TMPDIR/expected"
    [ "$(wc -l <"$BATS_TEST_TMPDIR/expected")" -gt 25 ]
    while read -r key; do
        grep -Eq "^ +([a-zA-Z]+[.])*$key( |$)" "$BATS_TEST_TMPDIR/keys.txt" || { echo "key $key"; return 1; }
    done <"$BATS_TEST_TMPDIR/expected"
}
