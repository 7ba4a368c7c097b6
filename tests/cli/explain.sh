#!/usr/bin/env bash
# `trestle explain` on the sample company: every figure it names can be asked
# for, the rows of a breakdown add up to its Total line to the cent, the
# schedule's marked jobs say which rule applied, and bad requests are refused
# with one line and a non-zero exit.
# Usage: explain.sh <trestle> <scratch-folder>
set -euo pipefail
trestle=$1 dir=$2
rm -rf "$dir"
mkdir -p "$dir"
export XDG_DATA_HOME=$dir/data XDG_CONFIG_HOME=$dir/config XDG_RUNTIME_DIR=$dir/run TRESTLE_TODAY=2026-12-01
mkdir -m 700 "$XDG_RUNTIME_DIR"
fail() { echo "FAIL: $*"; exit 1; }

# expect <code> <trestle arguments...>: runs it, stdout in $dir/out, stderr in $dir/err.
expect() {
    local want=$1 rc=0
    shift
    "$trestle" "$@" >"$dir/out" 2>"$dir/err" || rc=$?
    [ "$rc" -eq "$want" ] || fail "trestle $* exited $rc, not $want: $(cat "$dir/err")"
}
# adds_up <what>: $dir/out is rows of five tab-separated fields whose amounts,
# in cents, add up to its last line, "Total<TAB><amount>".
adds_up() {
    awk -F '\t' -v what="$1" '
        function cents(text) { gsub(/[$,.]/, "", text); return text + 0 }
        { lines[NR] = $0; fields[NR] = NF; amount[NR] = $NF; first[NR] = $1 }
        END {
            if (first[NR] != "Total" || fields[NR] != 2) { print "FAIL: " what ": the last line is not the total: " lines[NR]; exit 1 }
            for (i = 1; i < NR; i++) {
                if (fields[i] != 5) { print "FAIL: " what ": not five fields: " lines[i]; exit 1 }
                sum += cents(amount[i])
            }
            if (sum != cents(amount[NR])) { print "FAIL: " what ": rows add up to " sum ", not " amount[NR]; exit 1 }
        }' "$dir/out" || exit 1
}
# csv <kind>: the current company's records of that kind as CSV.
csv() {
    rm -rf "$dir/csv"
    "$trestle" export-csv "$dir/csv" >/dev/null
    tr -d '\r' <"$(echo "$dir"/csv/*/"$1".csv)"
}

"$trestle" sample >/dev/null
expect 0 explain --list
names=$(cat "$dir/out")
for name in jobcost.committed jobcost.actual budget.revised payapp.retainage payapp.due wip.overbilled hub.billed; do
    grep -qxF "$name" <<<"$names" || fail "--list does not name $name"
done

# Every figure of a project, on each of the sample's jobs.
app=$(csv pay_app | grep ',submitted$' | head -n 1 | cut -d, -f1)
[ -n "$app" ] || fail "no submitted pay application in the sample"
for name in $names; do
    case $name in
        payapp.*) expect 0 explain "$name" "$app" && adds_up "$name" ;;
        hub.*) expect 0 explain "$name" && adds_up "$name" ;;
        jobcost.* | budget.* | contract.* | project.* | wip.*)
            for number in GV-101 GV-102 GV-103; do
                expect 0 explain "$name" --project "$number" && adds_up "$name $number"
            done
            ;;
    esac
done

# The job with cost and no estimate earns its cost, not its contract, and says why.
expect 0 explain wip.earned --project GV-102
grep -q 'No estimate' "$dir/out" || fail "GV-102's earned revenue does not name its rule: $(cat "$dir/out")"
[ "$(tail -n 1 "$dir/out")" = $'Total\t$595.00' ] || fail "GV-102 earns $(tail -n 1 "$dir/out")"
expect 0 explain wip.overbilled --project GV-103
[ "$(tail -n 1 "$dir/out")" = $'Total\t$9,350.00' ] || fail "GV-103 is over billed $(tail -n 1 "$dir/out")"

# One cost code's actual cost is part of the project's.
code=$(csv cost_code | sed -n 2p | cut -d, -f4)
expect 0 explain jobcost.actual --project GV-101 --code "$code"
adds_up "jobcost.actual $code"

# Refused: one line on stderr, nothing on stdout.
refused() {
    local want=$1
    shift
    expect "$want" "$@"
    [ "$(wc -l <"$dir/err")" -eq 1 ] || fail "trestle $* said: $(cat "$dir/err")"
    [ ! -s "$dir/out" ] || fail "trestle $* printed: $(cat "$dir/out")"
}
refused 1 explain no.such.figure --project GV-101
refused 1 explain jobcost.actual
refused 1 explain jobcost.actual --project NOPE-1
refused 1 explain payapp.due NOT-AN-ID
refused 1 explain wip.earned --project GV-101 --code "$code"
refused 2 explain
refused 2 explain jobcost.actual --project
echo "explain: ok"
