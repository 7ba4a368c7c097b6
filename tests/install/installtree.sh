#!/usr/bin/env bash
# Installs the build tree into an empty prefix and checks that exactly the
# expected files land there, that the bitmaps have their sizes, and that the
# installed desktop entry and AppStream data point at files that exist.
# Usage: installtree.sh <cmake> <build-dir> <prefix> <app-id> "<icon sizes>"
set -uo pipefail
cmake=$1 build=$2 prefix=$3 id=$4 sizes=$5

rm -rf "$prefix"
"$cmake" --install "$build" --prefix "$prefix" >/dev/null || { echo "FAIL: cmake --install failed"; exit 1; }
cd "$prefix" || exit 1

expected=(
    bin/trestle
    share/applications/$id.desktop
    share/metainfo/$id.metainfo.xml
    share/icons/hicolor/scalable/apps/$id.svg
    share/man/man1/trestle.1.gz
    share/bash-completion/completions/trestle
    share/doc/trestle/copyright
    share/doc/trestle/changelog.Debian.gz
    share/lintian/overrides/trestle
)
for s in $sizes; do
    expected+=("share/icons/hicolor/${s}x${s}/apps/$id.png")
done

fail=0
actual=$(find . -type f -o -type l | sed 's|^\./||' | sort)
wanted=$(printf '%s\n' "${expected[@]}" | sort)
while read -r f; do
    [ -n "$f" ] && { echo "FAIL: not installed: $f"; fail=1; }
done < <(comm -13 <(echo "$actual") <(echo "$wanted"))
while read -r f; do
    [ -n "$f" ] && { echo "FAIL: installed but not expected: $f"; fail=1; }
done < <(comm -23 <(echo "$actual") <(echo "$wanted"))

[ -x bin/trestle ] || { echo "FAIL: bin/trestle is not executable"; fail=1; }

# A PNG's width and height are the big-endian words at bytes 16 and 20.
for s in $sizes; do
    png=share/icons/hicolor/${s}x${s}/apps/$id.png
    [ -f "$png" ] || continue
    read -r w h < <(od -An -tu1 -j16 -N8 "$png" | awk '{print $1*16777216+$2*65536+$3*256+$4, $5*16777216+$6*65536+$7*256+$8}')
    [ "$w $h" = "$s $s" ] || { echo "FAIL: $png is ${w}x${h}, not ${s}x${s}"; fail=1; }
done

# Compressed files must decompress; the page must still name the program.
for gz in share/man/man1/trestle.1.gz share/doc/trestle/changelog.Debian.gz; do
    [ -f "$gz" ] && ! gzip -t "$gz" && { echo "FAIL: $gz is not a valid gzip file"; fail=1; }
done
zcat share/man/man1/trestle.1.gz 2>/dev/null | grep -q '^\.TH TRESTLE 1' || { echo "FAIL: the man page has no .TH line"; fail=1; }

# The entry starts the installed program and names the installed icon; the
# AppStream data launches the installed entry.
desktop=share/applications/$id.desktop
exec_cmd=$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$desktop")
icon=$(sed -n 's/^Icon=//p' "$desktop")
[ -x "bin/$exec_cmd" ] || { echo "FAIL: Exec=$exec_cmd is not an installed program"; fail=1; }
[ "$icon" = "$id" ] || { echo "FAIL: Icon=$icon is not the application id $id"; fail=1; }
launch=$(sed -n 's|.*<launchable type="desktop-id">\(.*\)</launchable>.*|\1|p' share/metainfo/$id.metainfo.xml)
[ -f "share/applications/$launch" ] || { echo "FAIL: the metainfo launches $launch, which is not installed"; fail=1; }
grep -q "<id>$id</id>" share/metainfo/$id.metainfo.xml || { echo "FAIL: the metainfo's id is not $id"; fail=1; }

# The installed program runs on its own: its version is the one the metainfo releases.
version=$(bin/trestle --version 2>/dev/null | awk '{print $NF}')
grep -q "<release version=\"$version\"" share/metainfo/$id.metainfo.xml ||
    { echo "FAIL: the metainfo has no release for version \"$version\""; fail=1; }

[ $fail -eq 0 ] && echo "installed tree as expected: $(echo "$actual" | wc -l) files"
exit $fail
