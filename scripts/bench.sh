#!/usr/bin/env bash
# Backs up COUNT generated pictures (default 5000) to the local service; prints wall time, CPU time
# and peak memory of the program.
set -euo pipefail
cd "$(dirname "$0")/.."
export PATH=$PWD/build/bin:$PATH
. scripts/private-world.sh
count=${1:-5000}
folder=$(mktemp -d)
trap 'stop_service; rm -rf "$folder"' EXIT

quorvane-sample-library "$folder/pictures" "$count"
private_world "$folder"
start_service >/dev/null
sign_in
/usr/bin/time -f 'wall %e s, user %U s, system %S s, peak memory %M KiB' \
  quorvane-cli sync --library "$folder/pictures" --quiet
