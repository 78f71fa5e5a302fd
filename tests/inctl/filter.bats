#!/usr/bin/env bats
# Address filters from the command line: who is let in and why.

load common

filter() {
    file="$BATS_TEST_TMPDIR/filter.json"
    printf '{"objects": {"lo": {"sort": "IN_STACK", "config": {"flags": "IN_FLAG_LOOPBACK_ONLY",
        "addressVersion": "IN_ADDRESS_VERSION_4", "dnsOptions": {"disableQueryAddresses": true}}},
        "peers": {"sort": "IN_FILTER", "config": {"stackName": "lo", "entries": [%s]}}}}' "$1" >"$file"
}

network='{"host": "10.0.0.0", "flags": "IN_FILTER_ENTRY_FLAG_ADDRESS", "addressMatchingBits": 24}'
name='{"host": "nowhere.example", "flags": "IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES"}'

@test "filter check and explain peer: a verdict, a sentence, an exit code" {
    filter "$network, $name"
    expect 0 '^10.0.0.7 permitted: entry 1 matches 24 of 24 bits$' filter check "$file" peers 10.0.0.7
    expect 0 "^127.0.0.1 permitted: it is the stack's own address$" filter check "$file" peers 127.0.0.1
    local why='refused: entry 1 matches 22 of 24 bits; entry 2 has no address: nowhere.example: '
    expect 1 "^10.0.3.7 $why" filter check "$file" peers 10.0.3.7
    expect_json 1 '.[0] | .object == "peers" and .address == "10.0.3.7" and (.permitted | not) and .complete
        and (.text | startswith("'"$why"'"))' filter check "$file" peers 10.0.3.7 --json
    expect 1 "^10.0.3.7 $why" explain "$file" peer peers 10.0.3.7
    grep -Eq '^ *1 +10.0.0.0 +10.0.0.0/24 +22 bits agree$' <<<"$output"
    grep -q "own address, 127.0.0.1, is let in as well" <<<"$output"
    expect_json 1 '.[0].explanation | (.permitted | not) and .addresses == 1 and .stackAddress == "127.0.0.1"
        and .entries[0] == {"entry": 1, "host": "10.0.0.0", "permits": false, "notes": [],
            "addresses": [{"address": "10.0.0.0", "bits": 24, "matchingBits": 22}]}
        and .entries[1].notes[0].name == "nowhere.example"' explain "$file" peer peers 10.0.3.7 --json
    expect 0 '^Usage: inctl explain FILE peer \[OPTIONS\] FILTER ADDRESS' explain "$file" peer --help
    expect 2 'ADDRESS: nonsense' filter check "$file" peers nonsense
    expect 1 'no IN_FILTER is named peer; did you mean peers' filter check "$file" peer 10.0.0.1
}

@test "check: what is wrong with an entry, each where it stands" {
    filter "$network"',{"host": "a..b", "flags": "IN_FILTER_ENTRY_FLAG_ADRESS"},{"flags": ""},
        {"host": "a.b", "flags": "", "dnsSrvPrefixes": ["_sip", "x..y"]}'
    run "$INCTL" check "$file"
    [ "$status" -eq 3 ]
    diff <(sed -n 's/.*error: //p' <<<"$output") - <<'END'
peers.entries.1.host: "a..b" is not accepted, expected an IP address or a domain name
peers.entries.1.flags: unknown flag "IN_FILTER_ENTRY_FLAG_ADRESS", did you mean "IN_FILTER_ENTRY_FLAG_ADDRESS"?
peers.entries.2: "host" is missing, expected an IP address or a domain name
peers.entries.3.dnsSrvPrefixes.1: "x..y" is not accepted, expected a domain name
END
    grep -q 'warning: peers.entries.3: has no flag' <<<"$output" # counted as in the text
    filter '{"host": "a.b", "flags": "IN_FILTER_ENTRY_FLAG_ADDRESS"}, {"host": "10.0.0.1", "flags": ""},
        {"host": "10.0.0.1", "flags": "IN_FILTER_ENTRY_FLAG_ADDRESS", "addressMatchingBits": 33,
         "addressVersion": "IN_ADDRESS_VERSION_6", "dnsSrvPrefixes": ["_sip"]},
        {"host": "a…", "flags": "IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES|IN_FILTER_ENTRY_FLAG_DNS_QUERY_SRV"}'
    run "$INCTL" check "$file"
    [ "$status" -eq 0 ]
    diff <(sed -n 's/.*warning: \(peers[^:]*\).*/\1/p' <<<"$output" | sort) - <<'END'
peers.entries.0.host
peers.entries.1
peers.entries.2.addressMatchingBits
peers.entries.2.addressVersion
peers.entries.2.dnsSrvPrefixes
peers.entries.3.flags
peers.entries.3.host
END
}
