#!/usr/bin/env bash
# `trestle get` and `trestle set` on the sample company: money, dates and
# choices read as the editor reads them, a change order's approval doing what
# the editor's does, and a refused value leaving the record exactly as it was.
# Usage: getset.sh <trestle> <scratch-folder>
set -euo pipefail
trestle=$1 dir=$2
rm -rf "$dir"
mkdir -p "$dir"
export XDG_DATA_HOME=$dir/data XDG_CONFIG_HOME=$dir/config XDG_RUNTIME_DIR=$dir/run TRESTLE_TODAY=2026-12-01
mkdir -m 700 "$XDG_RUNTIME_DIR"
fail() { echo "FAIL: $*"; exit 1; }

# expect <code> <trestle arguments...>: runs it, its stderr kept in $dir/err.
expect() {
    local want=$1 rc=0
    shift
    "$trestle" "$@" >"$dir/out" 2>"$dir/err" || rc=$?
    [ "$rc" -eq "$want" ] || fail "trestle $* exited $rc, not $want: $(cat "$dir/err")"
}
# refused <trestle set arguments...>: exit 1, one line on stderr, the record unchanged.
refused() {
    "$trestle" get "$2" >"$dir/before"
    expect 1 "$@"
    [ "$(wc -l <"$dir/err")" -eq 1 ] || fail "trestle $* said more than one line: $(cat "$dir/err")"
    "$trestle" get "$2" >"$dir/after"
    cmp -s "$dir/before" "$dir/after" || fail "trestle $* changed the record"
}
# csv <kind>: the current company's records of that kind as CSV.
csv() {
    rm -rf "$dir/csv"
    "$trestle" export-csv "$dir/csv" >/dev/null
    cat "$dir"/csv/*/"$1".csv
}

"$trestle" sample >/dev/null
co=$(csv co | grep 'Upgrade lighting package' | cut -d, -f1)
line=$(csv co_line | grep ",$co," | cut -d, -f1)
[ -n "$co" ] && [ -n "$line" ] || fail "no pending change order with a line in the sample"

expect 0 get "$co"
[ "$(wc -l <"$dir/out")" -eq 1 ] || fail "get printed more than one line"
grep -q "^{\"id\":\"$co\",\"kind\":\"co\",.*\"status\":\"pending\"" "$dir/out" || fail "get: $(cat "$dir/out")"

# Money as a bookkeeper types it, stored as cents; the report shows before and after.
expect 0 set "$line" 'amount=$1,234.56'
grep -qF 'amount $9,800.00 → $1,234.56' "$dir/out" || fail "set amount said: $(cat "$dir/out")"
"$trestle" get "$line" | grep -q '"amount":"123456"' || fail "amount not stored as cents"
expect 0 set "$line" 'amount=(5.00)'
"$trestle" get "$line" | grep -q '"amount":"-500"' || fail "a credit in brackets not stored negative"

# A date as the editor shows it, a percentage and a choice by its label, in one call.
expect 0 set "$co" 'date=Dec 1, 2026' markup=12% status=Approved
"$trestle" get "$co" >"$dir/co.json"
for member in '"date":"2026-12-01"' '"markup":"12"' '"status":"approved"' '"decided":"2026-12-01"'; do
    grep -qF "$member" "$dir/co.json" || fail "after set, no $member in $(cat "$dir/co.json")"
done
# Approval adds the order's line to the schedule of values, as the editor's does.
csv sov_line | grep -q ',CO-2,' || fail "approving left no CO-2 schedule-of-values line"
expect 0 set "$co" status=pending
csv sov_line | grep -q ',CO-2,' && fail "going back to pending kept the CO-2 line"

# Refused values: nothing is written, even the good value given beside a bad one.
refused set "$line" amount=12x
grep -q 'amount' "$dir/err" || fail "the money error does not name the field"
refused set "$co" markup=15 date=2026-02-30
grep -q 'date "2026-02-30"' "$dir/err" || fail "the date error does not name the field: $(cat "$dir/err")"
refused set "$co" status=maybe
refused set "$co" days=inf
refused set "$co" amount=5
grep -q '"amount"' "$dir/err" || fail "the unknown field is not named"

# Unknown records and wrong calls.
expect 1 get NO-SUCH-ID
grep -q 'NO-SUCH-ID' "$dir/err" || fail "get does not name the unknown id"
expect 1 set NO-SUCH-ID title=x
expect 2 get
expect 2 get "$co" "$co"
expect 2 set "$co"
expect 2 set "$co" title
expect 2 set "$co" title=a title=b
echo "get and set as expected"
