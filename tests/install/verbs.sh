#!/usr/bin/env bash
# The verbs `trestle --help` lists must be the verbs the man page describes and
# the completion offers, so neither can fall behind the program.
# Usage: verbs.sh <trestle> <trestle.1> <completion-file>
set -uo pipefail
trestle=$1 manpage=$2 completion=$3

# Documented ahead of the program: these verbs land with another change. A verb
# listed here may be missing from --help; once --help lists it, it is checked like any other.
pending="snapshot snapshots"

# --help: the lines under "Verbs:", each "  <name> <usage>  <summary>", up to the blank line.
help_verbs=$("$trestle" --help | awk '/^Verbs:/ {on = 1; next} on && /^$/ {exit} on && /^  [a-z]/ {print $1}' | sort -u)
# The man page as a reader sees it: the tags of the VERBS section start in column 8.
man_verbs=$(MANWIDTH=200 LC_ALL=C.UTF-8 man -l "$manpage" 2>/dev/null |
    awk '/^VERBS/ {on = 1; next} on && /^[A-Z]/ {exit} on && /^       [a-z]/ {print $1}' | sort -u)
# The completion's offers for `trestle <Tab>`.
completion_verbs=$(bash -c '
    source /usr/share/bash-completion/bash_completion && source "$1" || exit 1
    COMP_WORDS=(trestle "") COMP_CWORD=1 COMP_LINE="trestle " COMP_POINT=8
    _trestle trestle "" trestle
    printf "%s\n" "${COMPREPLY[@]}"' _ "$completion" | sort -u)

fail=0
[ -n "$help_verbs" ] || { echo "FAIL: no verbs found in trestle --help"; exit 1; }
[ -n "$man_verbs" ] || { echo "FAIL: no verbs found in the man page's VERBS section"; exit 1; }
[ -n "$completion_verbs" ] || { echo "FAIL: the completion offers no verbs"; exit 1; }

# missing <what> <from> <list> <in> <list>: report each verb of the first list absent from the second.
missing() {
    local v
    for v in $2; do
        grep -qxF "$v" <<<"$4" || { echo "FAIL: $1 \"$v\" is missing from $3"; fail=1; }
    done
}
missing "the program's verb" "$help_verbs" "the man page" "$man_verbs"
missing "the program's verb" "$help_verbs" "the completion" "$completion_verbs"
missing "the man page's verb" "$man_verbs" "the completion" "$completion_verbs"
missing "the completion's verb" "$completion_verbs" "the man page" "$man_verbs"
for v in $man_verbs; do
    grep -qxF "$v" <<<"$help_verbs" && continue
    grep -qw -- "$v" <<<"$pending" && continue
    echo "FAIL: the man page describes \"$v\", which trestle --help does not list"
    fail=1
done

echo "trestle --help: $(echo $help_verbs)"
echo "man page:       $(echo $man_verbs)"
echo "completion:     $(echo $completion_verbs)"
exit $fail
