#!/usr/bin/env bash
# Sends a sparse movie of GIBIBYTES (default 4) to a server on this computer that throws it away,
# beside `curl -T`, in turn and five times each. Prints the throughput, CPU time and peak memory.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh release quorvane-bench >/dev/null
export PATH=$PWD/build/bin:$PATH
gibibytes=${1:-4}
folder=$(mktemp -d)
trap '[ -z "${sink:-}" ] || kill "$sink"; rm -rf "$folder"' EXIT
truncate -s "${gibibytes}G" "$folder/movie.mov"
cat "$folder/movie.mov" >/dev/null # the system fills its cache at the cost of the first reader
quorvane-bench sink >"$folder/port" &
sink=$!
for _ in $(seq 100); do [ -s "$folder/port" ] && break; sleep 0.05; done
url=http://127.0.0.1:$(cat "$folder/port")

measure() { # LABEL COMMAND...
  local label=$1 user system wall memory
  shift
  /usr/bin/time -o "$folder/times" -f '%U %S %e %M' "$@" >/dev/null
  read -r user system wall memory <"$folder/times"
  echo "$wall" >>"$folder/$label"
  awk -v l="$label" -v g="$gibibytes" -v u="$user" -v s="$system" -v w="$wall" -v m="$memory" 'BEGIN {
    printf "%-10s %5.2f GiB/s  CPU %.2f s for each GiB  peak memory %.1f MiB\n",
           l, g / w, (u + s) / g, m / 1024 }'
}

for _ in 1 2 3 4 5; do
  measure quorvane quorvane-bench send "$url" "$folder/movie.mov"
  measure curl curl -s -H 'Expect:' -X POST -T "$folder/movie.mov" "$url/v1/uploads"
done
best() { sort -n "$folder/$1" | head -n 1; }
awk -v a="$(best quorvane)" -v b="$(best curl)" 'BEGIN {
  printf "best of five: %.2f of the throughput of curl\n", b / a }'
