#!/usr/bin/env bats
# Attaching to a running host: status, watch, trace and set, and what they say when there is none, or one that hangs.

load common

# host NAME: runs a host beside the test.
host() {
    file="$BATS_TEST_TMPDIR/$1.json"
    printf '{"objects": {"loop": {"sort": "IN_STACK", "config": {"interface": "lo"}}, "active": {"sort": "CS_CONDITION"}}}' >"$file"
    start run "$file"
    await 'loop +IN_STACK'
}

# follow ARGUMENTS...: runs a client beside the test, its output in $seen.
follow() {
    seen=$(mktemp "$BATS_TEST_TMPDIR/seen.XXXXXX")
    "$INCTL" "$@" >>"$seen" 2>&1 3>&- &
    follower=$!
}

# sees PATTERN: returns when the client has printed it.
sees() {
    grep -Eqm1 -- "$1" <(timeout 60 tail -s 0.02 --pid="$follower" -n +1 -f "$seen" 2>/dev/null) || { cat "$seen"; return 1; }
}

# ends CODE: waits for the client's own end, and looks at its exit code.
ends() {
    local got=0
    wait "$follower" || got=$?
    [ "$got" -eq "$1" ] || { echo "exit code $got"; cat "$seen"; return 1; }
}

# leave CODE: ends the client, which runs on otherwise.
leave() {
    kill -INT "$follower"
    ends "$1"
}

@test "status, set and watch of a running host" {
    expect 1 "no host runs \(looked in $RUNTIME_DIRECTORY\)" status
    host sip
    expect 0 'loop +IN_STACK +up +inStackAddress=' status
    expect_json 0 '.[0].objects | map(.state) == ["up", "false"]' status --json
    expect 0 'primary interface  lo' status loop
    expect_json 0 '.[0].objects[0] | .config.interface == "lo" and .stack.interfaces == ["lo"] and .stack.dns.queries == []' status --json loop
    expect_json 1 '.[0].error | test("no object lop; did you mean loop")' status --json lop --host sip
    expect 1 'no host named six runs; did you mean sip' status --host six
    expect 0 'active is true in sip' set active true
    expect_json 0 '.[0] == {"answer": "set", "condition": "active", "state": "false"}' set --json active false --host "$RUNTIME_DIRECTORY/sip.sock"
    expect 1 'is of the sort IN_STACK, not a condition' set loop true
    expect 1 'did you mean active' set activ true
    expect 2 'VALUE' set active maybe

    follow watch --json
    sees '"event": "status".*"state": "up", "name": "loop"|"state": "up", "name": "loop".*"event": "status"'
    expect 0 'is true' set active true
    sees '"state": "true", "name": "active"'
    jq -e . "$seen"
    cp "$file" "$file.good"
    echo '{' >"$file"
    sees '"problems": \["[^"]*sip.json:[0-9]+:[0-9]+: error'
    expect 0 'The file was refused at' status
    expect 0 'is false' set active false
    sees '"state": "false", "name": "active".*'
    expect_json 0 '.[0].refused.problems | length == 1' status --json
    cp "$file.good" "$file"
    sees '"event": "accepted"'
    leave 0
    follow watch active
    sees 'active  CS_CONDITION  false'
    echo '{' >"$file"
    sees 'the file was refused; what ran before it runs on'
    cp "$file.good" "$file"
    sees 'the file is good again'
    finish TERM 0
    sees 'the host sip has ended'
    ends 1
    [ -z "$(ls "$RUNTIME_DIRECTORY")" ]
}

@test "trace follows an object, and with --tree what it works with" {
    host sip
    follow trace loop --tree
    sees '^[0-9T:.-]+Z loop IN_STACK#[0-9]+  created'
    sees 'IN_NW_INTERFACE#.*"displayName": "lo"'
    leave 0
    follow trace --json
    # It does not say when it begins to listen.
    until grep -q '"csValue"' "$seen"; do
        "$INCTL" set active true >/dev/null
        "$INCTL" set active false >/dev/null
    done
    grep -m1 '"csValue"' "$seen" | jq -e '.object == "active" and .event == "property"'
    leave 0
    expect 2 'OBJECT' trace --tree
    expect 1 'has no object lop' trace lop
}

@test "one host of a name, several by name, and the dead make room" {
    host sip
    expect 5 "a host named sip runs already \(process $started\); --name gives this one another name" run "$file" --for 0
    expect 0 ending run "$file" --for 0 --name other
    expect 0 ending run "$file" --for 0 --no-socket
    first=$started
    host edge
    expect 2 'several hosts run: edge, sip; say which with --host' status
    expect 0 'edge.json' status --host edge
    # A service manager gives each service a directory of its own, where another may have the same name.
    mkdir -m 700 "$RUNTIME_DIRECTORY/svc"
    ln "$RUNTIME_DIRECTORY/edge.sock" "$RUNTIME_DIRECTORY/svc/edge.sock"
    expect 2 'several hosts named edge run; .* --host [^ ]*/edge.sock or --host [^ ]*/svc/edge.sock' set active true --host edge
    expect 0 'edge.json' status --host "$RUNTIME_DIRECTORY/svc/edge.sock"
    rm -r "$RUNTIME_DIRECTORY/svc"
    # A lock is never taken for what it is not.
    echo '{"name": "mine"}' >"$BATS_TEST_TMPDIR/package.lock"
    expect 5 'package.lock is there already and is no lock of a host' run "$file" --socket "$BATS_TEST_TMPDIR/package.sock" --for 0
    grep -q mine "$BATS_TEST_TMPDIR/package.lock"
    kill -KILL "$first"
    wait "$first" || true
    expect 0 'edge.json' status
    finish TERM 0
    expect 1 'no host named sip runs' status --host sip
    host sip
    finish KILL 137
    expect 1 'no host runs' status
    host sip
    expect 0 'sip.json' status
}

@test "what claims to be a host neither stops a client nor writes to its terminal" {
    run python3 - "$INCTL" "$BATS_TEST_TMPDIR/it.sock" <<'END'
import socket, subprocess, sys
server = socket.socket( socket.AF_UNIX )
server.bind( sys.argv[2] )
server.listen()
hello = b'{"event": "hello", "protocol": 1, "host": "it"}\n'
answer = hello + b'{"answer": "status", "host": "\\u001b[2J", "objects": [%b]}\n'
for row, code in (
    ( b"\xff\n", 5 ), ( b"[" * 99999 + b"\n", 5 ), ( b"{}\n", 5 ), ( b'{"event": "hello", "protocol": {}}\n', 5 ),
    ( hello + b'{"error": "\\u001b[2J", "exit": 99}\n', 5 ), ( hello + b'{"answer": "status", "objects": 1}\n', 0 ),
    ( answer % b'5, {"name": "\\u001b[2J", "state": [], "items": 1}', 0 ),
    ( answer % b'{"reason": "\\u009b2J", "stack": {"interfaces": ["\\u001b[2J", []], "dns": {"queries": [1, {"result": 1}]}}}', 0 ),
    ( answer % b'{"filter": {"published": 1, "entries": [1, {"addresses": [1], "notes": [1]}]}, "config": 1}', 0 ),
):
    for object in [], [ "o" ]:
        client = subprocess.Popen( [ sys.argv[1], "status", "--host", sys.argv[2], *object ], stdout=subprocess.PIPE, stderr=subprocess.STDOUT )
        peer = server.accept()[0]
        peer.sendall( row )
        printed = client.communicate()[0]
        assert client.returncode == code and b"\x1b" not in printed and b"\xc2\x9b" not in printed, ( row, client.returncode, printed )
END
    [ "$status" -eq 0 ] || { echo "$output"; return 1; }
}

@test "a host that hangs is left after a while, and strangers are sent away" {
    host sip
    kill -STOP "$started"
    expect 5 'the host sip does not answer: it hangs or is stopped' status --timeout 300
    # As many wait as the system lets.
    run python3 - "$INCTL" "$RUNTIME_DIRECTORY/sip.sock" <<'END'
import socket, subprocess, sys
waiting = [ socket.socket( socket.AF_UNIX ) for i in range( 200 ) ]
for peer in waiting:
    peer.setblocking( False )
refused = sum( peer.connect_ex( sys.argv[2] ) != 0 for peer in waiting )
assert refused > 0
sys.exit( subprocess.run( [ sys.argv[1], "status", "--timeout", "300" ] ).returncode )
END
    [ "$status" -eq 5 ]
    grep -q 'does not answer' <<<"$output"
    kill -CONT "$started"
    expect 0 'loop' status
    if [ "$(id -u)" -eq 0 ]; then
        chmod 755 "$RUNTIME_DIRECTORY" "$BATS_TEST_TMPDIR" "$BATS_RUN_TMPDIR"
        run setpriv --reuid=65534 --regid=65534 --clear-groups "$INCTL" status --host "$RUNTIME_DIRECTORY/sip.sock"
        [ "$status" -eq 4 ]
        grep -q 'not permitted to attach to' <<<"$output"
    fi
    mkdir "$BATS_TEST_TMPDIR/open" && chmod 777 "$BATS_TEST_TMPDIR/open"
    RUNTIME_DIRECTORY="$BATS_TEST_TMPDIR/open" expect 5 'is open to others \(mode 0777, not 0700\)' run "$file" --for 0
}
