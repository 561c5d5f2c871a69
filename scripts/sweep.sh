#!/usr/bin/env bash
# Fails one system call or statement after another of a small backup with pictures, movies, a
# resumable upload, an album and a deletion; each time a normal run follows, and everything has to
# end as if nothing had happened. sweep.sh [KIND...]: open read write fsync rename mmap statement,
# else all of them. SWEEP_STEP=n tries every n-th call only.
set -euo pipefail
cd "$(dirname "$0")/.."
export PATH=$PWD/build/bin:$PATH
. scripts/private-world.sh
failing=$PWD/build/bin/quorvane-failing-calls.so
folder=$(mktemp -d)
trap 'stop_service; rm -rf "$folder"' EXIT
[ $# -gt 0 ] || set -- open read write fsync rename mmap statement

# The world as it is before each attempt: somebody signed in, and a library.
make_template() {
  mkdir -p "$folder/template"
  private_world "$folder/template"
  quorvane-sample-library "$folder/many" 3 >/dev/null
  quorvane-sample-library "$folder/sample" >/dev/null
  mkdir "$folder/template/pictures"
  find "$folder/many" -name '*.jpg' -exec cp -p {} "$folder/template/pictures" \;
  local movie=$folder/sample/Videolar/klip.mov
  cp -p "$movie" "$folder/template/pictures/VID_20210305_182210.mov"
  { cat "$movie"; printf '\x03\x30\x00\x00free'; } >"$folder/template/pictures/VID_20210306_182210.mov"
  truncate -s "$(($(stat -c %s "$movie") + 0x03300000))" "$folder/template/pictures/VID_20210306_182210.mov"
  start_service --state "$folder/template/account" --seed-album Deneme:0 >/dev/null
  sign_in
  stop_service
  rm -f "$folder/template/callback" "$folder/template/port"
}

backup() { quorvane-cli sync --library "$world/pictures" --target-album Deneme --delete-verified --yes --quiet; }

# What counts in the end: the items, the album, the Trash, what is left, the records.
outcome() {
  curl -s "$QUORVANE_GOOGLE_BASE_URL/_quorvane/report" |
    grep -oE '"(sha256|itemCount)": ?("[0-9a-f]+"|[0-9]+)' | sort
  find "$world" -path '*Trash*/files/*' -type f -exec sha256sum {} + | cut -d ' ' -f 1 | sort
  (cd "$world" && find pictures -type f | sort)
  sqlite3 "$HOME/Library/Application Support/Quorvane/quorvane.sqlite" \
    'SELECT sync_status, COUNT(*) FROM sync_records GROUP BY 1'
}

# CALL ("KIND:NUMBER"): a failing run, a normal one, and what came of it, in a world of its own.
attempt() {
  rm -rf "$folder/world"
  cp -a --sparse=always "$folder/template" "$folder/world"
  private_world "$folder/world"
  start_service --state "$world/account" >/dev/null
  FAILING_CALL=$1 FAILING_BELOW=$world FAILING_REPORT=$folder/calls LD_PRELOAD=$failing \
    backup >"$folder/out.txt" 2>&1 || true
  [ "$1" = none:0 ] || backup >>"$folder/out.txt" 2>&1 || true
  outcome
  stop_service
}

make_template
attempt none:0 >"$folder/right"
[ "$(grep -c sha256 "$folder/right")" -eq 5 ] || { cat "$folder/out.txt" "$folder/right" >&2; exit 1; }
cp "$folder/calls" "$folder/counted"
tried=0 wrong=0
for kind in "$@"; do
  calls=$(awk -v kind="$kind" '$1 == kind { print $2 }' "$folder/counted")
  for number in $(seq 1 "${SWEEP_STEP:-1}" "$calls"); do
    tried=$((tried + 1))
    attempt "$kind:$number" >"$folder/got" 2>&1 || true
    cmp -s "$folder/right" "$folder/got" && continue
    wrong=$((wrong + 1))
    echo "wrong end after $kind $number of $calls:"
    diff "$folder/right" "$folder/got" || true
    tail -n 5 "$folder/out.txt"
  done
  echo "$kind: $calls calls"
done
echo "Faults tried: $tried, wrong ends: $wrong"
[ $wrong -eq 0 ]
