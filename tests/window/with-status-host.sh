#!/bin/sh
# Runs a command on a display and a session bus of its own, without any tray: with-status-host.sh COMMAND...
set -u
folder=$(mktemp -d)
mkfifo "$folder/display"
Xvfb -displayfd 3 -screen 0 1400x900x24 -nolisten tcp 3>"$folder/display" >/dev/null 2>&1 &
server=$!
read -r number <"$folder/display"
export DISPLAY=":$number" QT_QPA_PLATFORM=xcb
dbus-run-session -- "$@"
status=$?
kill "$server"
wait
rm -rf "$folder"
exit "$status"
