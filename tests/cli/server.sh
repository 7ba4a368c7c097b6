#!/usr/bin/env bash
# Two data folders on one company server, from the command line: set up,
# push, logins, connect, a change made in one folder read in the other, a
# change made while the server is down sent once it is back, and disconnect.
# Usage: server.sh <trestle> <scratch-folder>
set -euo pipefail
trestle=$1 dir=$2
rm -rf "$dir"
mkdir -p "$dir"
chmod 755 "$dir"
fail() { echo "FAIL: $*"; exit 1; }

bin=$(ls -d /usr/lib/postgresql/*/bin | sort -V | tail -n 1)
as_server=()
if [ "$(id -u)" -eq 0 ]; then
    chown postgres "$dir"
    as_server=(runuser -u postgres --)
fi
pg() { "${as_server[@]}" "$bin/$1" "${@:2}"; }
pg initdb -D "$dir/pg" -U postgres -A trust -E UTF8 --no-sync >/dev/null
printf 'local all postgres trust\nlocal all all scram-sha-256\n' >"$dir/pg/pg_hba.conf"
start() { pg pg_ctl -D "$dir/pg" -l "$dir/pg.log" -w -o "-c listen_addresses='' -k $dir -c fsync=off" start >/dev/null; }
stop() { pg pg_ctl -D "$dir/pg" -m "${1:-fast}" stop >/dev/null 2>&1 || true; }
trap 'stop' EXIT
start
pg createdb -h "$dir" -U postgres company
admin="host=$dir dbname=company user=postgres"
sql() { "$bin/psql" -X -At -h "$dir" -U postgres -d company -c "$1"; }

# on <folder> <trestle arguments...>: runs trestle on that data folder.
on() {
    local f=$1
    shift
    XDG_DATA_HOME=$dir/$f/data XDG_CONFIG_HOME=$dir/$f/config XDG_RUNTIME_DIR=$dir/$f/run "$trestle" "$@"
}
for f in a b; do mkdir -p "$dir/$f/run" && chmod 700 "$dir/$f/run"; done

on a sample >/dev/null
on a server init "$admin" | grep -q "set up for Trestle" || fail "init"
on a server init "$admin" | grep -q "already set up" || fail "init again"
on a server push "$admin" | grep -q "^Pushed 1 company" || fail "push"
if on a server push "$admin" 2>"$dir/err"; then fail "a second push was taken"; fi
grep -q "already on the server" "$dir/err" || fail "second push: $(cat "$dir/err")"

owner=$(sql "SELECT id FROM trestle.recs WHERE kind = 'user' AND f->>'role' = 'Owner' LIMIT 1")
pm=$(sql "SELECT id FROM trestle.recs WHERE kind = 'user' AND f->>'role' <> 'Owner' LIMIT 1")
echo 'owner pass' | on a server add-login "$admin" olive --user "$owner" --password-stdin >/dev/null
echo 'pm pass' | on a server add-login "$admin" pete --user "$pm" --password-stdin >/dev/null
if echo x | on a server add-login "$admin" 'x"; DROP TABLE trestle.recs; --' --user "$pm" --password-stdin \
    2>"$dir/err"; then fail "a login with quotes was made"; fi
[ "$(sql "SELECT count(*) FROM trestle.recs")" -gt 100 ] || fail "the records went"

if PGPASSWORD=wrong on b connect "host=$dir dbname=company user=pete" 2>"$dir/err" </dev/null; then
    fail "a wrong password connected"
fi
grep -q "refused the login" "$dir/err" || fail "wrong password: $(cat "$dir/err")"
PGPASSWORD='owner pass' on a connect "host=$dir dbname=company user=olive" >"$dir/out"
grep -q "Grand Valley Builders" "$dir/out" || fail "connect a: $(cat "$dir/out")"
export PGPASSWORD='pm pass'
on b connect "host=$dir dbname=company user=pete" | grep -q "as pete" || fail "connect b"

project=$(sql "SELECT id FROM trestle.recs WHERE kind = 'project' ORDER BY pos LIMIT 1")
on b set "$project" name="Clubhouse, phase 2" >/dev/null
PGPASSWORD='owner pass' on a get "$project" | grep -q '"name":"Clubhouse, phase 2"' || fail "a did not see b's change"

# The history names the login and the old and new values, oldest first.
on b history "$project" >"$dir/out"
grep -qP '^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ\tpete\tname\t.*\tClubhouse, phase 2$' "$dir/out" ||
    fail "history: $(cat "$dir/out")"

# A Field login cannot change a change order, from the command line either: one line, exit 1, nothing changed.
field=$(sql "SELECT id FROM trestle.recs WHERE kind = 'user' AND f->>'role' = 'Field' LIMIT 1")
echo 'field pass' | on a server add-login "$admin" finn --user "$field" --password-stdin >/dev/null
mkdir -p "$dir/c/run" && chmod 700 "$dir/c/run"
PGPASSWORD='field pass' on c connect "host=$dir dbname=company user=finn" >/dev/null
co=$(sql "SELECT id FROM trestle.recs WHERE kind = 'co' ORDER BY pos LIMIT 1")
if PGPASSWORD='field pass' on c get "$co" >/dev/null 2>&1; then fail "a Field login read a change order"; fi
PGPASSWORD='field pass' on c get "$project" >"$dir/out"
grep -q '"contract"' "$dir/out" && fail "a Field login saw the contract amount"
before=$(sql "SELECT version FROM trestle.recs WHERE id = '$project'")
timecard=$(sql "SELECT id FROM trestle.recs WHERE kind = 'timecard' ORDER BY pos LIMIT 1")
PGPASSWORD='field pass' on c set "$timecard" notes="From the site" >/dev/null || fail "a Field login could not log time"
[ "$(sql "SELECT f->>'notes' FROM trestle.recs WHERE id = '$timecard'")" = "From the site" ] || fail "timecard notes"
[ -n "$(sql "SELECT f->>'rate' FROM trestle.recs WHERE id = '$timecard'")" ] || fail "the Field save erased the rate"
[ "$(sql "SELECT version FROM trestle.recs WHERE id = '$project'")" = "$before" ] || fail "the project changed"
# A team member is not a Field user's to change: the server refuses, the verb says so in one line and exits 1.
if PGPASSWORD='field pass' on c set "$pm" name="Renamed" >"$dir/out" 2>"$dir/err"; then fail "a Field login renamed a member"; fi
[ "$(wc -l <"$dir/err")" -eq 1 ] && grep -q "refused the change" "$dir/err" || fail "refused set: $(cat "$dir/err")"
[ "$(sql "SELECT f->>'name' FROM trestle.recs WHERE id = '$pm'")" != "Renamed" ] || fail "the member was renamed"
PGPASSWORD='field pass' on c get "$pm" | grep -q '"name":"Renamed"' && fail "the refused name stayed in the copy"

# The server goes away: the change waits in b's outbox, and goes out when it is back.
stop immediate
on b set "$project" name="Clubhouse, phase 3" >"$dir/out" || fail "an offline set failed"
grep -q "Working offline — 1 change will be sent when the company server is back" "$dir/out" ||
    fail "offline set: $(cat "$dir/out")"
on b info | grep -q "Waiting to be sent: 1" || fail "info while offline"
start
on b info >"$dir/out"
grep -q "Company server: pete at $dir/company" "$dir/out" || fail "info: $(cat "$dir/out")"
[ "$(sql "SELECT f->>'name' FROM trestle.recs WHERE id = '$project'")" = "Clubhouse, phase 3" ] ||
    fail "the offline change did not reach the server"
on b info | grep -q "Waiting to be sent: 0" || fail "outbox not drained"

# Back to its own records: b's own folder never had the company.
on b disconnect | grep -q "works on its own records" || fail "disconnect"
if on b info | grep -q "Company server"; then fail "still connected"; fi
on b restore /nonexistent --yes 2>/dev/null && fail "restore of nothing"
on a restore "$dir/none.zip" --yes 2>"$dir/err" && fail "restore while connected"
grep -q "works on a company server" "$dir/err" || fail "restore while connected: $(cat "$dir/err")"
echo "server.sh: all good"
