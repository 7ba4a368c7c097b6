#!/usr/bin/env bash
# Runs the completion function on typed command lines and compares what it
# offers with what it should. Usage: completion.sh <completion-file>
set -uo pipefail
completion=$1
lib=/usr/share/bash-completion/bash_completion
[ -r "$lib" ] || { echo "bash-completion is not installed ($lib)"; exit 1; }
# shellcheck disable=SC1090
source "$lib"
# shellcheck disable=SC1090
source "$completion"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
mkdir -p out.d
touch nightly.zip notes.txt wip.pdf sheet.csv unsaved.json
fail=0

# What bash offers for a line typed up to its end ("trestle rep" completes "rep").
complete_line() {
    local line=$1
    read -ra COMP_WORDS <<<"$line"
    [[ $line == *' ' ]] && COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMP_LINE=$line
    COMP_POINT=${#line}
    COMPREPLY=()
    _trestle trestle "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    printf '%s\n' "${COMPREPLY[@]}" | sed '/^$/d' | sort | tr '\n' ' ' | sed 's/ $//'
}

# line | expected offers, sorted, space-separated
while IFS='|' read -r line expected; do
    [ -z "$line" ] && continue
    got=$(complete_line "$line")
    if [ "$got" != "$expected" ]; then
        echo "FAIL: \"$line\" offers [$got], expected [$expected]"
        fail=1
    fi
done <<'CASES'
trestle |backup connect disconnect docx explain export-csv export-qb get history import info log pdf proposal recover report restore sample server set snapshot snapshots
trestle history |
trestle s|sample server set snapshot snapshots
trestle server |add-login init push
trestle server add-login conn jen --|--password-stdin --user
trestle connect |
trestle disconnect |
trestle exp|explain export-csv export-qb
trestle explain --|--code --list --project
trestle --|--help --screenshot --version
trestle report |budget hub jobcost project schedule wip wip-schedule
trestle report wip|wip wip-schedule
trestle report wip |out.d sheet.csv wip.pdf
trestle report wip --|--project
trestle report wip --project |
trestle restore |nightly.zip out.d
trestle restore nightly.zip --|--yes
trestle rec|recover
trestle imp|import
trestle import --|--dry-run --new-company --skip-bad-rows --template
trestle import --template |open-jobs
trestle import |notes.txt out.d sheet.csv
trestle import sheet.csv --new-company |
trestle recover |out.d unsaved.json
trestle recover unsaved.json |
trestle backup |nightly.zip out.d
trestle backup nightly.zip |
trestle export-qb |out.d
trestle export-qb out.d --|--project
trestle export-csv |out.d
trestle log estimates --|--project --search
trestle log estimates |out.d wip.pdf
trestle log estimates --search roof |out.d wip.pdf
trestle pdf |
trestle get |
trestle set abc |
trestle set abc amount=5 |
trestle pdf abc |out.d wip.pdf
trestle info |
trestle snapshots |
trestle --screenshot shot.png --|--finish --size --zoom
trestle --screenshot shot.png hub --finish |anodized-red black-chrome graphite-gray gunmetal-blue lavender-violet rose-gold
trestle --screenshot shot.png hub --finish gr|graphite-gray
trestle --screenshot shot.png hub --zoom |
CASES
[ $fail -eq 0 ] && echo "every completion as expected"
exit $fail
