#!/usr/bin/env bats
# A host that runs: its file changes, and what it then says.

load common

# A configuration with a condition of that value.
with_condition() {
    printf '{"objects": {"lo": {"sort": "IN_STACK", "config": {"interface": "lo"}},\n"c": {"sort": "CS_CONDITION", "config": {"value": %s}}}}' "$1"
}

@test "every way to change the file is seen: in place, renamed, removed, through links, by SIGHUP" {
    cd "$BATS_TEST_TMPDIR"
    mkdir etc etc/v1 etc/v2
    with_condition false >etc/v1/file
    with_condition true >etc/v2/file
    ln -s v1 etc/now
    ln -s etc/now/file link
    start run link
    await 'c +CS_CONDITION +ready +value=false'
    ln -s v2 etc/new && mv -T etc/new etc/now # a link on the way
    await 'value=true'
    : >"$log"
    with_condition false >etc/v2/file # in place
    await 'value=false'
    with_condition true >etc/v2/new && mv etc/v2/new etc/v2/file # as editors do
    await 'value=true'
    : >"$log"
    rm -r etc
    await '^link:1:1: error: cannot be read \(No such file'
    mkdir -p etc/now
    with_condition false >etc/now/file
    await 'value=false'
    : >"$log"
    kill -HUP "$started"
    await 're-loaded link, nothing changed'
    finish INT 0
}

@test "a bad new file is refused with every problem, and what ran goes on until a good one comes" {
    local file="$BATS_TEST_TMPDIR/file"
    with_condition false >"$file"
    start run "$file" --json
    await '"event": "status".*"name": "c"'
    printf '{"objects": {"lo": {"sort": "IN_STACK", "config": {"adress": 1}},\n"c": {"sort": "CS_CONDITON"}}}' >"$file"
    await '"event": "refused"'
    grep -q "^$file:1:[0-9]*: error: lo.adress: " "$log"
    grep -q "^$file:2:[0-9]*: error: c" "$log"
    with_condition true >"$file"
    await '"event": "reloaded"'
    finish TERM 0
    grep '^{' "$log" | jq -es 'map(select(.event == "refused"))[0].problems | length == 2'
    grep '^{' "$log" | jq -es '[.[] | select(.event == "record")] == [.[] | select(.name == "c" and .change == "configured")]'
}
