#!/usr/bin/env bash
# Makes build/quorvane_VERSION_ARCH.deb out of the release build, after checking what goes into it.
set -euo pipefail
cd "$(dirname "$0")/.."

# Equal sources give equal bytes: every file carries the date of the package's changelog.
version=$(sed -nE '1s/^quorvane \((.*)\) .*/\1/p' packaging/changelog.debian)
grep -q "VERSION ${version%-*} " CMakeLists.txt && grep -q "<release version=\"${version%-*}\"" packaging/*.metainfo.xml ||
  { echo "packaging/changelog.debian, the metainfo and CMakeLists.txt tell of different versions" >&2; exit 1; }
SOURCE_DATE_EPOCH=$(date -d "$(sed -nE 's/^ -- .*>  //p' packaging/changelog.debian | head -n 1)" +%s)
export SOURCE_DATE_EPOCH

desktop-file-validate packaging/*.desktop
appstreamcli validate --no-net packaging/*.metainfo.xml >build/metainfo.log || { cat build/metainfo.log >&2; exit 1; }
for page in packaging/*.1; do
  warnings=$(LC_ALL=C.UTF-8 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
  [ -z "$warnings" ] || { echo "$page: $warnings" >&2; exit 1; }
done

# The manual names every command and every option.
cli() { LC_ALL=C.UTF-8 build/bin/quorvane-cli "$@"; }
commands=$(cli --help | sed -nE 's/^  ([a-z]+) .*/\1/p')
words=$(for command in $commands; do echo "$command"; cli "$command" --help | grep -oE '^  --[a-z-]+'; done)
[ "$(wc -w <<<"$words")" -gt 20 ] || { echo 'quorvane-cli --help could not be read' >&2; exit 1; }
manual=$(tr -d '\\' <packaging/quorvane-cli.1)
for word in $words; do
  grep -qwe "$word" <<<"$manual" ||
    { echo "packaging/quorvane-cli.1 does not tell of $word" >&2; exit 1; }
done

depends=$(scripts/setup.sh --list run demo | paste -sd, | sed "s/,/, /g")
rm -f build/quorvane_*.deb
cpack --config build/release/CPackConfig.cmake -B build -D CPACK_DEBIAN_PACKAGE_DEPENDS="$depends" >build/deb.log 2>&1 ||
  { cat build/deb.log >&2; exit 1; }
rm -rf build/_CPack_Packages
ls build/quorvane_*.deb
