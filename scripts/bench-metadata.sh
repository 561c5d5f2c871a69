#!/usr/bin/env bash
# Writes a date into JPEG pictures, and into HEIC pictures when there are some, beside the commands
# that a person would use for it and beside a bare copy:
#   bench-metadata.sh [FOLDER]   its *.jpg, *.jpeg and *.heic are copied until there are 500 and 200
# Without a folder the JPEGs are generated ones. Prints CPU and wall time for each picture.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh release quorvane-bench quorvane-sample-library >/dev/null
export PATH=$PWD/build/bin:$PATH
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
samples=${1:-$folder/samples}
[ $# -gt 0 ] || quorvane-sample-library "$samples" 50 >/dev/null

collect() { # COUNT EXTENSION...: copies of the samples in $folder/originals, named in turn
  local count=$1 found=() names=() i
  shift
  for i in "$@"; do names+=(-o -iname "*.$i"); done
  mapfile -t found < <(find "$samples" -type f \( "${names[@]:1}" \) | sort)
  rm -rf "$folder/originals" && mkdir "$folder/originals"
  [ ${#found[@]} -gt 0 ] || return 1
  for ((i = 0; i < count; ++i)); do
    cp "${found[i % ${#found[@]}]}" "$folder/originals/$i.$1"
  done
}

measure() { # LABEL COMMAND...: over fresh copies, whose names are added to the command
  local label=$1 count user system wall
  shift
  rm -rf "$folder/copies" && cp -r "$folder/originals" "$folder/copies"
  sync
  count=$(find "$folder/copies" -type f | wc -l)
  /usr/bin/time -o "$folder/times" -f '%U %S %e' "$@" "$folder"/copies/* >/dev/null 2>"$folder/errors" ||
    { echo "$label failed:"; head -n 3 "$folder/errors"; }
  read -r user system wall < <(tail -n 1 "$folder/times")
  awk -v l="$label" -v n="$count" -v u="$user" -v s="$system" -v w="$wall" 'BEGIN {
    printf "  %-16s user %6.2f  system %6.2f  CPU %6.2f  wall %6.2f\n",
           l, u * 1000 / n, s * 1000 / n, (u + s) * 1000 / n, w * 1000 / n }'
}

text='2021:03:05 23:30:00'
compare() { # TITLE [exiv2]
  echo "$1, milliseconds for each of $(ls "$folder/originals" | wc -l) pictures:"
  measure quorvane quorvane-bench stamp 1614987000
  measure exiftool exiftool -q -q -overwrite_original "-DateTimeOriginal=$text" \
    "-CreateDate=$text" "-ModifyDate=$text"
  [ $# -lt 2 ] || measure exiv2 exiv2 -M "set Exif.Photo.DateTimeOriginal $text" \
    -M "set Exif.Photo.DateTimeDigitized $text" -M "set Exif.Image.DateTime $text"
  mkdir "$folder/bare"
  measure 'bare copy' cp -t "$folder/bare"
  rm -rf "$folder/bare"
}

collect 500 jpg jpeg && compare JPEG exiv2
collect 200 heic && compare HEIC || echo 'HEIC: no samples'
