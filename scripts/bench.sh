#!/usr/bin/env bash
# Measures the program against the local service, both on this computer.
#   bench.sh [COUNT...]     backs up so many small pictures, a run each (default: 1000 10000)
#   bench.sh stops [COUNT]  stops it with SIGINT at so many random instants (default: 100)
set -euo pipefail
cd "$(dirname "$0")/.."
export PATH=$PWD/build/bin:$PATH
. scripts/private-world.sh

begin_world() { # [service arguments]
  folder=$(mktemp -d)
  trap end_world EXIT
  private_world "$folder"
  start_service "$@" >/dev/null
  sign_in
}

end_world() {
  stop_service
  rm -rf "$folder"
}

measure() { # COUNT
  local run
  begin_world
  quorvane-sample-library "$folder/pictures" "$1" >/dev/null
  for run in $(seq $((($1 + 49999) / 50000))); do # a run ends after a thousand passes of fifty
    /usr/bin/time -q -a -o "$folder/time" -f '%e %U %S %M' \
      quorvane-cli sync --library "$folder/pictures" --quiet >"$folder/out" || [ $? -eq 4 ]
  done
  awk -v n="$1" '{ wall += $1; cpu += $2 + $3; if ($4 > memory) memory = $4 }
    END { printf "%7d pictures  %8.1f s  %6.0f/s  %6.2f ms CPU each  %6.1f MiB at most\n",
          n, wall, n / wall, cpu * 1000 / n, memory / 1024 }' "$folder/time"
  end_world
}

# Two thousand pictures, then a movie of 4 GiB: the stops hit uploads, batches, back-off waits, token
# refreshes (the tokens last two seconds), and the copying of the movie.
stops() { # COUNT
  local faults=() n program begin movie
  for n in $(seq 40 60 2000); do faults+=(--fault "upload:$n:503"); done
  begin_world --latency 40 --token-lifetime 62 "${faults[@]}"
  quorvane-sample-library "$folder/pictures" 2000 >/dev/null
  quorvane-sample-library "$folder/sample" >/dev/null
  movie=$folder/pictures/VID_20210305_182210.mov
  cp "$(find "$folder/sample" -iname '*.mov' -o -iname '*.mp4' | sort | head -n 1)" "$movie"
  printf '\0\0\0\1free\0\0\0\1\0\0\0\0' >>"$movie" # a box of 4 GiB, which a sparse file fills
  truncate -s +4294967280 "$movie"
  set -m # a job of a shell without job control ignores SIGINT
  for n in $(seq "$1"); do
    quorvane-cli sync --library "$folder/pictures" --quiet >"$folder/out" 2>&1 &
    program=$!
    # Before that it is a shell, which swallows the signal.
    until [ "$(cat /proc/$program/comm)" = quorvane-cli ]; do sleep 0.01; done
    sleep "$((RANDOM % 2)).$((100 + RANDOM % 900))"
    begin=${EPOCHREALTIME/[.,]/}
    kill -INT $program
    wait $program || [ $? -eq 130 ] || cat "$folder/out" >&2
    echo $((${EPOCHREALTIME/[.,]/} - begin))
    [ $((n % 10)) -ne 0 ] || quorvane-cli retry >"$folder/out"
  done | sort -n >"$folder/stops"
  awk '{ all[NR] = $1 / 1000 } END { printf "%d stops: median %.1f ms, nine of ten below %.1f ms, worst %.1f ms\n",
         NR, all[int((NR + 1) / 2)], all[int(NR * 0.9)], all[NR] }' "$folder/stops"
}

if [ "${1:-}" = stops ]; then
  stops "${2:-100}"
else
  for count in "${@:-1000 10000}"; do
    for n in $count; do measure "$n"; done
  done
fi
