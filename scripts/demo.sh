#!/usr/bin/env bash
# Makes a sample library, starts the local Google Photos service on a free port, signs in, backs
# the library up and shows the result. Everything lives in one temporary folder, removed at the end
# (QUORVANE_DEMO_KEEP=1 keeps it).
set -euo pipefail
cd "$(dirname "$0")/.."
bin=$PWD/build/bin
work=$(mktemp -d)
service=
finish() {
  [ -z "$service" ] || { kill "$service" && wait "$service"; } 2>/dev/null || true
  if [ -n "${QUORVANE_DEMO_KEEP:-}" ]; then echo "Kept: $work"; else rm -rf "$work"; fi
}
trap finish EXIT
say() { printf '\n── %s\n' "$1"; }

# A home of its own: nothing of yours is read or written.
export HOME=$work/home XDG_CONFIG_HOME=$work/home/.config XDG_DATA_HOME=$work/home/.local/share
export XDG_RUNTIME_DIR=$work/run DBUS_SESSION_BUS_ADDRESS=disabled:
unset DISPLAY WAYLAND_DISPLAY
mkdir -p "$XDG_CONFIG_HOME" "$HOME/Pictures" && mkdir -m 700 "$XDG_RUNTIME_DIR"
echo 'XDG_PICTURES_DIR="$HOME/Pictures"' >"$XDG_CONFIG_HOME/user-dirs.dirs"

say "A sample library"
"$bin/quorvane-sample-library" "$work/Resimler"

say "The local Google Photos service"
"$bin/quorvane-emulator" --port-file "$work/port" --seed-album "Aile:19990" --report "$work/report.json" &
service=$!
for _ in $(seq 100); do [ -s "$work/port" ] && break; sleep 0.05; done
export QUORVANE_GOOGLE_BASE_URL=http://127.0.0.1:$(cat "$work/port")

say "Signing in"
# The service grants at once: its redirect is the callback URL that a browser would hand over.
mkfifo "$work/callback"
"$bin/quorvane-cli" login <"$work/callback" >"$work/login.txt" 2>&1 &
login=$!
exec 3>"$work/callback"
for _ in $(seq 200); do grep -q '^http' "$work/login.txt" && break; sleep 0.05; done
curl -s -o /dev/null -w '%header{location}\n' "$(grep -m1 '^http' "$work/login.txt")" >&3
wait "$login"
exec 3>&-
"$bin/quorvane-cli" status

say "What a backup would do"
"$bin/quorvane-cli" sync --library "$work/Resimler" --dry-run --quiet || true

say "The backup"
"$bin/quorvane-cli" sync --library "$work/Resimler" || [ $? -eq 4 ]

say "Again: nothing is left to do"
"$bin/quorvane-cli" sync --quiet || [ $? -eq 4 ]

say "Undated items, with the date their files were saved"
"$bin/quorvane-cli" retry --date-fallback fileSaveDate
"$bin/quorvane-cli" sync --quiet || [ $? -eq 4 ]

say "Where things are"
"$bin/quorvane-cli" status
