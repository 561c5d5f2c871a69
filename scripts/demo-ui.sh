#!/usr/bin/env bash
# Starts the window over a sample library and a local Google Photos service, signed in. Everything
# lives in a folder of its own, which goes away when the window is quit.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
export PATH=$here:$here/../build/bin:$here/../../bin:$PATH # in the source tree, or installed
. "$here/private-world.sh"
show=$(env | grep -E '^(DISPLAY|WAYLAND_DISPLAY|XAUTHORITY)=' || true)
[ -n "$show" ] || { echo 'No display: the demo of the command line shows the same without one.' >&2; exit 1; }

place=$(mktemp -d)
trap 'stop_service; rm -rf "$place"' EXIT
private_world "$place"
cd "$place"
start_service
sign_in
quorvane-sample-library "$place/pictures" >/dev/null
# The library counts as chosen.
sed -i "1s|{|{\"com.quorvane.library_path\": \"$place/pictures\",|" \
  "$HOME/Library/Application Support/Quorvane/preferences.json"
export $show
echo 'Quorvane waits in the status bar (or opens its window); quit it to end the demonstration.'
quorvane
