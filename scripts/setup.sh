#!/usr/bin/env bash
# Installs the Debian packages that are missing for the groups named: build run test demo bench fuzz
# lint package. Silent when nothing is missing. setup.sh --list GROUP...: names them instead.
set -euo pipefail

declare -A groups=(
  [build]="build-essential cmake ninja-build pkg-config qt6-base-dev qt6-declarative-dev libgl-dev libxcb1-dev libsqlite3-dev
    libcurl4-openssl-dev libssl-dev zlib1g-dev libexiv2-dev libsecret-1-dev"
  [test]="libgtest-dev libgmock-dev libcpp-httplib-dev libimage-exiftool-perl ffmpeg libheif-examples sqlite3 openssl
    dbus gnome-keyring libglib2.0-bin xdg-utils xvfb
    xdotool openbox trayer curl clang libgnustep-base-dev libobjc-12-dev libblocksruntime-dev"
  [run]="qml6-module-qtquick qml6-module-qtquick-window qml6-module-qtquick-controls
    qml6-module-qtquick-templates qml6-module-qtquick-layouts qml6-module-qtquick-shapes
    qml6-module-qtqml qml6-module-qtqml-workerscript libqt6svg6 fonts-inter fonts-dejavu-core
    fonts-noto-color-emoji qt6-translations-l10n xdg-utils"
  [demo]="curl"
  [bench]="python3 time curl openssl sqlite3 libimage-exiftool-perl exiv2 ffmpeg libheif-examples xvfb openbox trayer"
  [fuzz]="clang libclang-rt-14-dev"
  [lint]="clang-format clang-tidy qt6-declarative-dev-tools"
  [package]="librsvg2-bin desktop-file-utils appstream man-db"
)

if [ "${1:-}" = --list ]; then
  shift
  for group in "$@"; do printf '%s\n' ${groups[$group]}; done
  exit
fi

missing=()
for group in "$@"; do
  for package in ${groups[$group]}; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing+=("$package")
  done
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "Missing packages, and no sudo to install them: ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
{ "${as_root[@]}" apt-get update -q &&
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends \
    "${missing[@]}"; } >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
