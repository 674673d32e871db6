#!/usr/bin/env bash
# Makes the package, checks its files with Debian's validators, unpacks it and
# runs the unpacked programs: the CLI calculates the example, the desktop
# program starts (offscreen) and makes its data folder from the shipped data.
set -euo pipefail
build=$1 source=$2 cpack=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() { echo "FAIL: $*" >&2; exit 1; }

"$cpack" --config "$build/CPackConfig.cmake" -B "$work/out" > "$work/cpack.log" 2>&1 || { cat "$work/cpack.log"; fail "cpack"; }
deb=$(ls "$work"/out/zelmor_*_amd64.deb)
version=$(dpkg-deb -f "$deb" Version)
[ "$(basename "$deb")" = "zelmor_${version}_amd64.deb" ] || fail "package name $(basename "$deb")"

dpkg-deb -x "$deb" "$work/root"
root=$work/root/usr
for f in bin/zelmor-cli bin/zelmor share/zelmor/madad.csv share/man/man1/zelmor.1.gz share/man/man1/zelmor-cli.1.gz \
         share/doc/zelmor/copyright share/doc/zelmor/changelog.gz \
         share/applications/org.zelmor.Zelmor.desktop share/metainfo/org.zelmor.Zelmor.metainfo.xml \
         share/icons/hicolor/scalable/apps/org.zelmor.Zelmor.svg; do
    [ -e "$root/$f" ] || fail "missing /usr/$f"
done
file "$root/bin/zelmor-cli" | grep -q ', stripped' || fail "zelmor-cli is not stripped"
file "$root/bin/zelmor" | grep -q ', stripped' || fail "zelmor is not stripped"
dpkg-deb -f "$deb" Depends | grep -q 'libqt6sql6-sqlite' || fail "Depends lacks the SQLite driver"

# The validators, where the machine has them.
if command -v desktop-file-validate > /dev/null; then
    desktop-file-validate "$root/share/applications/org.zelmor.Zelmor.desktop" || fail "desktop-file-validate"
fi
if command -v appstreamcli > /dev/null; then
    appstreamcli validate --no-net "$root/share/metainfo/org.zelmor.Zelmor.metainfo.xml" || fail "appstreamcli"
fi
if command -v lintian > /dev/null; then
    lintian --tag-display-limit 0 "$deb" > "$work/lintian.log" 2>&1 || true
    cat "$work/lintian.log"
    ! grep -q '^E:' "$work/lintian.log" || fail "lintian reports errors"
fi

# The manual pages name every command and option that --help names.
manpage() { zcat "$root/share/man/man1/$1.1.gz" | sed 's/\\-/-/g'; }
words_of() { grep -o -- '--[a-z][a-z-]*' | sort -u; }
cli_man=$(manpage zelmor-cli)
desk_man=$(manpage zelmor)
cli_commands=$("$root/bin/zelmor-cli" --help | sed -n 's/^  zelmor-cli \([a-z][a-z-]*\).*/\1/p')
for c in $cli_commands; do
    grep -q "^\.BR $c " <<< "$cli_man" || fail "zelmor-cli(1) lacks the command $c"
    for w in $("$root/bin/zelmor-cli" "$c" --help 2>/dev/null | words_of); do
        grep -q -- "$w" <<< "$cli_man" || fail "zelmor-cli(1) lacks $w of $c"
    done
done
for w in $("$root/bin/zelmor" --help | words_of); do
    grep -q -- "$w" <<< "$desk_man" || fail "zelmor(1) lacks $w"
done

# The unpacked programs, with a data folder of their own.
"$root/bin/zelmor-cli" --version | grep -qx "zelmor-cli $version" || fail "zelmor-cli --version"
"$root/bin/zelmor" --version | grep -qx "zelmor $version" || fail "zelmor --version"
data=$work/data
"$root/bin/zelmor-cli" calc "$source/examples/couple.json" --today 2016-06-30 --data-dir "$data" > "$work/calc.json" \
    || fail "zelmor-cli calc from the package"
grep -q '"format": "zelmor-results"' "$work/calc.json" || fail "calc wrote no result document"

# The desktop program runs until it is stopped; by then it has opened the new
# report's template in its data folder.
desk=$work/desk
set +e
QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=$work timeout 8 "$root/bin/zelmor" --data-dir "$desk" --today 2016-06-30 \
    > "$work/zelmor.log" 2>&1
status=$?
set -e
[ $status -eq 124 ] || { cat "$work/zelmor.log"; fail "zelmor ended by itself with status $status"; }
[ -s "$desk/2015/D2015.BRK" ] || { cat "$work/zelmor.log"; fail "zelmor did not open its report database"; }
echo "package test passed: $(basename "$deb")"
