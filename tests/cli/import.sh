#!/usr/bin/env bash
# `trestle import` as a contractor starts: QuickBooks lists into a new company,
# a spreadsheet of contacts with a bad row (named, nothing written), the good
# rows alone when asked, a dry run that writes nothing, a re-import that adds
# nothing, and the open-jobs template brought in as it is saved.
# Usage: import.sh <trestle> <scratch-folder>
set -euo pipefail
trestle=$1 dir=$2
rm -rf "$dir"
mkdir -p "$dir/in"
export XDG_DATA_HOME=$dir/data XDG_CONFIG_HOME=$dir/config XDG_RUNTIME_DIR=$dir/run TRESTLE_TODAY=2026-11-25
mkdir -m 700 "$XDG_RUNTIME_DIR"
fail() { echo "FAIL: $*"; exit 1; }

# expect <code> <trestle arguments...>: runs it, its output in $dir/out and $dir/err.
expect() {
    local want=$1 rc=0
    shift
    "$trestle" "$@" >"$dir/out" 2>"$dir/err" || rc=$?
    [ "$rc" -eq "$want" ] || fail "trestle $* exited $rc, not $want: $(cat "$dir/out" "$dir/err")"
}
has() { grep -qxF "$1" "$dir/out" || fail "expected the line \"$1\" in: $(cat "$dir/out")"; }
count() {
    rm -rf "$dir/csv"
    "$trestle" export-csv "$dir/csv" >/dev/null
    local f
    f=$(ls "$dir"/csv/*/"$1".csv 2>/dev/null) || { echo 0; return; }
    echo $(($(grep -c '' "$f") - 1))
}

# Windows-1252, CRLF, as QuickBooks writes a list export.
printf '!CUST\tNAME\tBADDR1\tPHONE1\t\r\nCUST\tCaf\xe9 Ruiz\t1 Elm St\t503-555-0100\t\r\nCUST\tCaf\xe9 Ruiz:Patio\t\t\t\r\n!VEND\tNAME\tVTYPE\r\nVEND\tBolt Electric\tSubcontractor\r\n!ACCNT\tNAME\r\nACCNT\tChecking\r\n' >"$dir/in/lists.iif"

expect 0 import "$dir/in/lists.iif" --new-company "Fenton Builders" --dry-run
has "contacts: 2 new, 0 updated, 0 unchanged"
has "projects: 1 new, 0 updated, 0 unchanged"
has "ACCNT: 1 rows not imported"
[ ! -e "$XDG_DATA_HOME/Fenwright/Trestle/trestle.sqlite" ] || [ "$(count contact)" -eq 0 ] || fail "a dry run wrote"

expect 0 import "$dir/in/lists.iif" --new-company "Fenton Builders"
[ "$(count contact)" -eq 2 ] || fail "the lists did not come in"
grep -q 'Café Ruiz' "$dir"/csv/*/contact.csv || fail "the Windows-1252 name was not read"
expect 0 import "$dir/in/lists.iif"
has "contacts: 0 new, 0 updated, 2 unchanged"
[ "$(count contact)" -eq 2 ] || fail "a re-import doubled the contacts"

# A spreadsheet with a bad phone on its third line: named, nothing written.
printf '\xef\xbb\xbfName;Phone;Email\r\nAce Roofing;503-555-0111;ace@example.com\r\nBee Glass;call;\r\n' >"$dir/in/subcontractors.csv"
expect 1 import "$dir/in/subcontractors.csv"
has 'subcontractors.csv:3: Phone: “call” is not a phone number.'
[ "$(count contact)" -eq 2 ] || fail "a file with a bad row wrote"
expect 0 import "$dir/in/subcontractors.csv" --skip-bad-rows
[ "$(count contact)" -eq 3 ] || fail "the good row was not written"
grep -q '^Bee Glass;\?,\?' "$dir/in/subcontractors - rows to fix.csv" || fail "no file of rows to fix"

# The open-jobs template, saved and brought in as it is.
expect 0 import --template open-jobs "$dir/in/open jobs.csv"
printf 'Name,Type\nHarbor Street LLC,Client / Owner\nRuth Alvarez,Client / Owner\n' >"$dir/in/clients.csv"
expect 0 import "$dir/in/clients.csv"
expect 0 import "$dir/in/open jobs.csv"
has "open jobs: 2 new, 0 updated, 0 unchanged"
[ "$(count project)" -eq 3 ] || fail "the open jobs did not come in"
[ "$(count pay_app)" -eq 2 ] || fail "no opening applications"
expect 2 import
echo PASS
