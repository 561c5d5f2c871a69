#!/usr/bin/env bash
# Format and static checks over the sources git knows: C++ of programs and tests, and QML.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' '*.mm' | xargs clang-format --dry-run --Werror

# QML against the types that the sources declare.
mkdir -p build
scripts/build.sh release quorvane_window_qmllint >build/qmllint.log 2>&1 || { cat build/qmllint.log >&2; exit 1; }
if grep -qE '^(Warning|Error)' build/qmllint.log; then cat build/qmllint.log >&2; exit 1; fi

# Each folder's sources are read as one, so that what they all include is checked once: minutes
# instead of an hour. Beneath a folder of this name the static analyzer takes what another source
# includes for a source, elsewhere for a header, where it begins no path. Nothing is built there.
# Without precompiled headers: clang cannot read GCC's.
export folder=build/UnifiedSource
cmake -S . -B $folder -G Ninja -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -DCMAKE_UNITY_BUILD=ON \
  -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 >build/configure-lint.log 2>&1 || { cat build/configure-lint.log >&2; exit 1; }
sources=$(grep -oE '"file": "[^"]+/(Unity/unity_[0-9]+_cxx\.cxx|tests/support/[^/"]+\.cpp)"' $folder/compile_commands.json |
  cut -d'"' -f4 | grep -vE '_qmlcache\.dir|/fuzz/')

# The analyzer gives a function up after 30,000 steps, not after 225,000: that takes a third of the
# time. Tests go without it. They may copy, too, and set the environment of their process.
check() {
  local checks=-bugprone-suspicious-include
  [[ $1 != */tests/* ]] || checks+=',-clang-analyzer-*,-performance-*,-concurrency-mt-unsafe'
  clang-tidy -p $folder --quiet --checks="$checks" \
    --header-filter="^$PWD/(src|emulator|sample|bench|tests)/" \
    --extra-arg={-Xclang,-analyzer-config,-Xclang,max-nodes=30000} "$1"
}
export -f check
# The largest first, so that all cores end together.
for source in $sources; do
  echo "$(sed -n 's/^#include "\(\/.*\)"$/\1/p' "$source" | xargs cat | wc -c) $source"
done | sort -rn | cut -d' ' -f2 | xargs -P "$(nproc)" -n 1 bash -c 'check "$1"' _
