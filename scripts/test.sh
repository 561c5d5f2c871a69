#!/usr/bin/env bash
# Builds and runs every test: all of them plain and under the address and undefined-behaviour
# sanitizers, those with threads under the thread sanitizer. Closes with the counts of all runs.
set -uo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)
passed=0 failed=0 skipped=0

count() { # ATTRIBUTE REPORT: of the report's root element, which comes first
  grep -oE -m1 "\\b$1=\"[0-9]+\"" "$2" | head -n 1 | tr -dc 0-9
}

run() { # PRESET [test program...]
  local preset=$1 report="$PWD/build/$1/tests.xml" only=()
  shift
  scripts/build.sh "$preset" "$@" || exit 1
  rm -f "$report"
  [ $# -eq 0 ] || only=(-R "^($(IFS='|'; echo "${*#test-}"))/")
  ctest --preset "$preset" -j "$jobs" --output-junit "$report" --progress "${only[@]}"
  [ -s "$report" ] || { echo "no test report from $preset" >&2; exit 1; }
  local total failures disabled skips
  total=$(count tests "$report") failures=$(count failures "$report")
  disabled=$(count disabled "$report") skips=$(count skipped "$report")
  passed=$((passed + total - failures - disabled - skips))
  failed=$((failed + failures))
  skipped=$((skipped + skips + disabled))
}

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0 UBSAN_OPTIONS=print_stacktrace=1
export TSAN_OPTIONS="ignore_noninstrumented_modules=1 halt_on_error=1"
run dev
run asan
run tsan test-foundation test-store test-library test-google test-sync

[ "$skipped" -eq 0 ] || echo "Skipped tests say why above: search for SKIPPED."
echo "Tests: $passed passed, $failed failed, $skipped skipped"
[ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
