#!/usr/bin/env bash
# Packs build/Quorvane.app into build/Quorvane.dmg, beside a link to the applications. On a Mac only.
set -euo pipefail
cd "$(dirname "$0")/.."
[ -d build/Quorvane.app ] || { echo "There is no build/Quorvane.app: make app" >&2; exit 1; }
rm -rf build/dmg build/Quorvane.dmg
mkdir -p build/dmg
cp -R build/Quorvane.app build/dmg/
ln -s /Applications build/dmg/Applications
hdiutil create -volname Quorvane -srcfolder build/dmg -format UDZO build/Quorvane.dmg
rm -rf build/dmg
