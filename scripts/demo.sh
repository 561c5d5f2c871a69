#!/usr/bin/env bash
# Makes a sample library, starts the local Google Photos service on a free port, signs in, backs
# the library up and shows the result. Everything lives in one temporary folder, removed at the end
# (QUORVANE_DEMO_KEEP=1 keeps it).
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
export PATH=$here:$here/../build/bin:$here/../../bin:$PATH # in the source tree, or installed
. "$here/private-world.sh"
folder=$(mktemp -d)
finish() {
  stop_service
  if [ -n "${QUORVANE_DEMO_KEEP:-}" ]; then echo "Kept: $folder"; else rm -rf "$folder"; fi
}
trap finish EXIT
say() { printf '\n── %s\n' "$1"; }
sync() { quorvane-cli sync "$@" || [ $? -eq 4 ]; } # 4: some items are held back, as they should be

say "A sample library"
quorvane-sample-library "$folder/Resimler"

say "The local Google Photos service"
private_world "$folder"
cd "$folder"
start_service

say "Signing in"
sign_in
tail -n 1 "$folder/login.txt"

say "What a backup would do"
sync --library "$folder/Resimler" --dry-run --quiet

say "The backup"
sync --library "$folder/Resimler"

say "Again: nothing is left to do"
sync --quiet

say "Undated items, with the date their files were saved"
quorvane-cli retry --date-fallback fileSaveDate
sync --quiet

say "Where things are"
quorvane-cli status
