#!/usr/bin/env bash
# Puts the built programs, Qt and the icon into build/Quorvane.app and signs it. On a Mac only.
# GOOGLE_CLIENT_ID: the client whose scheme leads back from the sign-in, else the one built in.
# QUORVANE_SIGNING_IDENTITY: of the keychain; without one the bundle is good for this Mac only.
set -euo pipefail
cd "$(dirname "$0")/.."
for tool in rsvg-convert iconutil macdeployqt codesign; do
  command -v "$tool" >/dev/null || { echo "Missing: $tool (brew install librsvg qt; Xcode's command line tools)" >&2; exit 1; }
done

app=build/Quorvane.app
version=$(sed -n 's/^project(quorvane VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
client=${GOOGLE_CLIENT_ID:-$(sed -n 's/.*"\([0-9]*-[a-z0-9]*\)\.apps\.googleusercontent\.com".*/\1/p' src/app/AppConfig.cpp)}
scheme=com.googleusercontent.apps.${client%.apps.googleusercontent.com}

rm -rf "$app" build/AppIcon.iconset
mkdir -p "$app/Contents/MacOS" "$app/Contents/Resources" build/AppIcon.iconset
cp build/bin/quorvane build/bin/quorvane-cli "$app/Contents/MacOS/"
sed -e "s/@VERSION@/$version/" -e "s/@URL_SCHEME@/$scheme/" packaging/macos/Info.plist >"$app/Contents/Info.plist"
for size in 16 32 128 256 512; do
  rsvg-convert --width $size --height $size -o build/AppIcon.iconset/icon_${size}x$size.png packaging/quorvane.svg
  rsvg-convert --width $((2 * size)) --height $((2 * size)) -o build/AppIcon.iconset/icon_${size}x$size@2x.png packaging/quorvane.svg
done
iconutil --convert icns --output "$app/Contents/Resources/AppIcon.icns" build/AppIcon.iconset
macdeployqt "$app" -qmldir=src/ui/qml -executable="$app/Contents/MacOS/quorvane-cli"
# The hardened runtime takes no libraries that nobody's identity has signed.
hardened=()
[ -z "${QUORVANE_SIGNING_IDENTITY:-}" ] || hardened=(--options runtime --timestamp)
codesign --force --deep ${hardened[@]+"${hardened[@]}"} --entitlements packaging/macos/quorvane.entitlements \
  --sign "${QUORVANE_SIGNING_IDENTITY:--}" "$app"
codesign --verify --strict "$app"
echo "$app"
