#!/bin/sh
# Runs a command on a display of its own that has a window manager and a tray: with-tray.sh COMMAND...
set -u
folder=$(mktemp -d)
mkfifo "$folder/display"
Xvfb -displayfd 3 -screen 0 1400x900x24 -nolisten tcp 3>"$folder/display" >/dev/null 2>&1 &
server=$!
read -r number <"$folder/display"
export DISPLAY=":$number" QT_QPA_PLATFORM=xcb
openbox >/dev/null 2>&1 &
trayer --edge top --align right --SetDockType true --expand true >/dev/null 2>&1 &
"$@"
status=$?
kill "$server" # the others end with it
wait
rm -rf "$folder"
exit "$status"
