#!/usr/bin/env bash
# Fuzzes every parser of foreign bytes for SECONDS each (default 600), two at a time.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-600}
mapfile -t targets < <(basename -s .cpp fuzz/*Fuzz.cpp)
scripts/build.sh fuzz "${targets[@]}"
one() {
  local target=$1 seconds=$2 name corpus
  name=$(basename "$target" Fuzz | tr '[:upper:]' '[:lower:]')
  corpus=build/fuzz/corpus/$name
  mkdir -p "$corpus"
  "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=1024 -print_final_stats=1 \
    -artifact_prefix="build/fuzz/$name-" "$corpus" "fuzz/seeds/$name" >"build/fuzz/$name.log" 2>&1 &&
    echo "$name: no crash in $seconds s, $(grep -m1 number_of_executed_units "build/fuzz/$name.log")" ||
    { echo "$name: failed, see build/fuzz/$name.log"; return 1; }
}
export -f one
printf 'build/fuzz/bin/%s\n' "${targets[@]}" | xargs -P 2 -I{} bash -c 'one {} '"$seconds"
