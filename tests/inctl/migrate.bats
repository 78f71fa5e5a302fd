#!/usr/bin/env bats
# A stored file of an older version is brought up to date: shown, compared, replaced.

load common

# Makes $file the old one and $new what becomes of it.
old_file() {
    file="$BATS_TEST_TMPDIR/old.json" new="$BATS_TEST_TMPDIR/new.json"
    cat >"$file" <<'END'
// of the north office
{
  "objects": {
    "office": {
      "sort": "IN_STACK",
      "config": {
        "disableReverseDnsLookup": true, // slow there
        "address": "10.0.0.1",
        "addressMatchingBits": 24,
        "interface": "eth0"
      }
    },
    "tls": { "sort": "IN_TLS_STACK", "config": { "rsaPrivateKey": {"pem": "x"} /* secret */ } }
  },
  "modules": { "in": { "version": "7.1" } }
}
END
    # 7.1: the step to 3.0 is done, that to 8.0 finds nothing to change.
    cat >"$new" <<'END'
// of the north office
{
  "objects": {
    "office": {
      "sort": "IN_STACK",
      "config": {
        "disableReverseDnsLookup": true, // slow there
        "interface": "eth0",
        "network": "10.0.0.1/24"
      }
    },
    "tls": { "sort": "IN_TLS_STACK", "config": {"privateKey": {"pem": "x"}} }
  },
  "modules": { "in": { "version": "13.0" } }
}
END
}

@test "migrate: the file as it would be, the difference, the updates" {
    old_file
    "$INCTL" migrate "$file" >"$BATS_TEST_TMPDIR/out" 2>"$BATS_TEST_TMPDIR/told"
    cmp "$BATS_TEST_TMPDIR/out" "$new"
    diff - "$BATS_TEST_TMPDIR/told" <<END
2017-10-13  in 7.1 -> 8.0  nothing to change
2018-07-03  in 8.0 -> 9.0  1 object: tls
2019-03-06  in 9.0 -> 11.0  nothing to change
2020-02-04  in 11.0 -> 12.0  nothing to change
2020-02-19  in 12.0 -> 13.0  1 object: office
$file: to be brought up to date
END
    "$INCTL" migrate "$file" --diff 2>/dev/null | sed 1,2d >"$BATS_TEST_TMPDIR/difference"
    diff <(diff -u "$file" "$new" | sed 1,2d) "$BATS_TEST_TMPDIR/difference"
    expect_json 0 '.[0] | .changed and (.written | not) and (.updates | map(.date)) == ["2017-10-13", "2018-07-03",
        "2019-03-06", "2020-02-04", "2020-02-19"] and .updates[1] == {"date": "2018-07-03", "module": "in",
        "before": "8.0", "after": "9.0", "objects": ["tls"], "info": false}' migrate "$file" --json
    "$INCTL" migrate "$file" --json | jq -jr .text | cmp - "$new"
}

@test "migrate --write: replaces the file once, and leaves what is up to date alone" {
    old_file
    chmod 640 "$file"
    expect 0 'old.json: brought up to date$' migrate "$file" --write
    cmp "$file" "$new"
    [ "$(stat -c %a "$file")" = 640 ]
    inode=$(stat -c %i "$file")
    expect 0 '^[^ ]*old.json: up to date$' migrate "$file" --write
    [ "$(stat -c %i "$file")" = "$inode" ]
    printf '\xef\xbb\xbf{"objects":{"a" :{"sort":"IN_STACK","config":{"disableReverseDnsLookup":true}}},"modules":{"in":{"version":"13.0"}}}//x' >"$file"
    "$INCTL" migrate "$file" 2>/dev/null | cmp - "$file"
    [ -z "$("$INCTL" migrate "$file" --diff 2>/dev/null)" ]
    expect_json 0 '.[0] | (.changed or .written | not) and .updates == []' migrate "$file" --write --json
}

@test "migrate: records named by numbers stay records" {
    local more file="$BATS_TEST_TMPDIR/old.json" new="$BATS_TEST_TMPDIR/new.json"
    local flags=', "flags": "IN_FILTER_ENTRY_FLAG_ADDRESS|IN_FILTER_ENTRY_FLAG_DNS_QUERY_ADDRESSES"'
    written() {
        printf '{"objects": { // by numbers\n  "0": {"sort": "IN_FILTER", "config": {"entries": [{"host": "::1"%s}]}}%s\n}%s}\n' \
            "$1" "$more" "$2"
    }
    for more in '' ', // two
  "1": {"sort": "IN_STACK"}'; do
        written '' ', "modules": {}' >"$file"
        written "$flags" ', "modules": {"in": {"version": "13.0"}}' >"$new"
        expect 0 'old.json: good' check "$file"
        "$INCTL" migrate "$file" 2>/dev/null | cmp - "$new"
        expect 0 'brought up to date$' migrate "$file" --write
        cmp "$file" "$new"
        expect 0 'old.json: good' check "$file"
        expect 0 ' 0 +IN_FILTER ' run "$file" --for 0
    done
}

@test "migrate: what it refuses" {
    local row file="$BATS_TEST_TMPDIR/bad.json"
    for row in '{"objects": {}, "objects": {}}|:1:17: error: objects: the key stands twice' \
        '{"objects": []}|:1:13: error: objects: not an object' '[1]|:1:1: error: not an object' \
        '{"objects": {|:1:14: error: not JSON'; do
        printf '%s' "${row%|*}" >"$file"
        expect 3 "${row#*|}" migrate "$file" --write
    done
    expect 3 'none.json:1:1: error: cannot be read \(No such file' migrate "$BATS_TEST_TMPDIR/none.json"
    expect 2 'exclude' migrate "$file" --diff --write
    old_file
    (ulimit -f 0 && expect 5 'old.json: not saved: writing: File too large' migrate "$file" --write)
    [ "$(ls -A "$BATS_TEST_TMPDIR" | grep -c cs-save)" -eq 0 ]
}

@test "a file that the system does not let be read is not called bad" {
    local command
    for command in check run migrate; do
        expect 5 '/proc/self/mem:1:1: error: cannot be read \(Input/output error\)$' $command /proc/self/mem
    done
    expect 5 'mem: not read$' check /proc/self/mem
    [ "$(id -u)" -eq 0 ] || return 0
    # Nor one that this user may not read, or whose directory it may not write.
    old_file
    chmod 755 "$BATS_RUN_TMPDIR" "$BATS_TEST_TMPDIR"
    for command in "600 check" "600 run" "600 migrate" "644 migrate --write"; do
        chmod "${command%% *}" "$file"
        run setpriv --reuid=65534 --regid=65534 --clear-groups "$INCTL" ${command#* } "$file"
        [ "$status" -eq 4 ] && grep -q 'Permission denied' <<<"$output" || { echo "$command $status $output"; return 1; }
    done
}
