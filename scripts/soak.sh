#!/usr/bin/env bash
# Kills the program (SIGKILL) at random instants for MINUTES (default 20), against a local service
# that fails at random, then lets it finish and checks that nothing was lost, doubled or torn.
set -euo pipefail
cd "$(dirname "$0")/.."
export PATH=$PWD/build/bin:$PATH
. scripts/private-world.sh
minutes=${1:-20}
folder=$(mktemp -d)
trap 'stop_service; rm -rf "$folder"' EXIT
made=0 kills=0 rounds=0
store="$folder/home/Library/Application Support/Quorvane/quorvane.sqlite"
staging=$folder/home/Pictures/QuorvaneStaging_Permanent

random() { echo $(($1 + (RANDOM * 32768 + RANDOM) % ($2 - $1 + 1))); } # LEAST MOST

# Small pictures, and a few large enough to be killed in the middle of a copy or an upload.
more_pictures() {
  local first=$made large
  made=$((made + 1000))
  rm -rf "$folder/new"
  quorvane-sample-library "$folder/new" "$made" >/dev/null
  for large in $(find "$folder/new" -type f | sort | tail -n 1000 | shuf -n 4); do
    head -c "$(random 20000000 60000000)" /dev/urandom >>"$large"
  done
  cp -rn "$folder/new/." "$folder/pictures"
  rm -rf "$folder/new"
  echo "$((SECONDS / 60)) min: $kills kills in $rounds runs, pictures $first -> $made"
}

faults=()
for _ in $(seq 300); do
  uploads=(500 503 401 429 "drop=$(random 0 3000)" "cut=$(random 0 60)" "delay=$(random 50 900)" stall)
  batches=(500 503 "drop=$(random 0 900)" "cut=$(random 0 2000)" "delay=$(random 50 900)" stall)
  faults+=(--fault "upload:$(random 1 60000):${uploads[RANDOM % ${#uploads[@]}]}")
  faults+=(--fault "batchCreate:$(random 1 4000):${batches[RANDOM % ${#batches[@]}]}")
done

mkdir -p "$folder/pictures"
more_pictures
private_world "$folder"
start_service "${faults[@]}" >/dev/null
sign_in

pending() {
  sqlite3 -cmd '.timeout 5000' "$store" \
    "SELECT COUNT(*) FROM sync_records WHERE sync_status IN ('DISCOVERED', 'STAGED')" 2>/dev/null || echo 1000
}

end=$((SECONDS + minutes * 60))
while [ $SECONDS -lt $end ]; do
  quorvane-cli sync --library "$folder/pictures" --quiet >>"$folder/out.txt" 2>&1 &
  program=$!
  instant=$(random 10 900) # milliseconds; starting takes a part of them
  sleep "$(printf '%d.%03d' $((instant / 1000)) $((instant % 1000)))"
  kill -KILL $program 2>/dev/null || true
  code=0
  wait $program 2>/dev/null || code=$?
  rounds=$((rounds + 1))
  [ $code -ne 137 ] || kills=$((kills + 1))
  if [ $((rounds % 20)) -eq 0 ]; then
    quorvane-cli retry >/dev/null
    [ "$(pending)" -ge 200 ] || more_pictures
  fi
done

for _ in $(seq 40); do
  quorvane-cli retry >/dev/null
  code=0
  quorvane-cli sync --library "$folder/pictures" --quiet >"$folder/last.txt" 2>&1 || code=$?
  [ $code -ne 0 ] || break
done
curl -s "$QUORVANE_GOOGLE_BASE_URL/_quorvane/report" >"$folder/report.json"
(cd "$staging" && find . -type f -printf '%f\0' | xargs -0 sha256sum | sed 's/  /\t/') >"$folder/staged.txt"
answer() { # QUERY: over the service's items, the staged files and the store's records
  sqlite3 -readonly "$store" <<SQL
CREATE TEMP TABLE items AS
  SELECT json_extract(value, '\$.id') AS id, json_extract(value, '\$.sha256') AS sha
  FROM json_each(CAST(readfile('$folder/report.json') AS TEXT), '\$.mediaItems');
CREATE TEMP TABLE staged(sha, name);
.mode tabs
.import '$folder/staged.txt' staged
CREATE INDEX temp.item ON items(id);
CREATE INDEX temp.digest ON staged(sha);
$1
SQL
}
failures=0
expect() { # WHAT NUMBER QUERY
  local found
  found=$(answer "$3")
  printf '%-62s %s\n' "$1" "$found"
  [ "$found" = "$2" ] || { echo "  expected $2" >&2; failures=$((failures + 1)); }
}
echo "kills: $kills in $rounds runs; last exit code $code; pictures $made"
expect 'assets that are verified' "$made" "SELECT COUNT(*) FROM sync_records WHERE sync_status = 'VERIFIED';"
expect 'other records' 0 "SELECT COUNT(*) FROM sync_records WHERE sync_status <> 'VERIFIED';"
expect 'items at the service' "$made" 'SELECT COUNT(*) FROM items;'
expect 'different contents at the service' "$made" 'SELECT COUNT(DISTINCT sha) FROM items;'
expect 'records whose item is not there or has other bytes' 0 'SELECT COUNT(*) FROM sync_records
  WHERE NOT EXISTS (SELECT 1 FROM items WHERE id = remote_media_id AND sha = sha256_hash);'
expect 'staged files' "$made" 'SELECT COUNT(*) FROM staged;'
expect 'assets whose staged file is not whole' 0 "SELECT COUNT(*) FROM sync_records
  WHERE NOT EXISTS (SELECT 1 FROM staged WHERE sha = sha256_hash
    AND substr(name, 1, 44) = replace(asset_local_identifier, '/', '_') || '_');"
[ $failures -eq 0 ] || { tail -n 20 "$folder/last.txt" >&2; exit 1; }
