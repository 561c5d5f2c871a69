#!/usr/bin/env bash
# Format and static checks over the sources git knows: lint.sh, or lint.sh --format.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' '*.mm' | xargs clang-format --dry-run --Werror
[ "${1:-}" != --format ] || exit 0
# Each folder's sources are read as one, so that what they all include is checked once: minutes
# instead of an hour. Without precompiled headers: clang cannot read GCC's.
mkdir -p build
cmake -S . -B build/lint -G Ninja -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON -DBUILD_TESTING=OFF \
  -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0 >build/configure-lint.log
# QML against the types that the sources declare; what is generated for it, clang-tidy reads too.
cmake --build build/lint --target quorvane_window_qmllint >build/qmllint.log || { cat build/qmllint.log >&2; exit 1; }
if grep -qE '^(Warning|Error)' build/qmllint.log; then cat build/qmllint.log >&2; exit 1; fi
# The analyzer's paths end where a header begins, unless it is told otherwise: the sources are
# headers to it here.
grep -ohE '"file": "[^"]+/(Unity/unity_[0-9]+_cxx\.cxx|src/ui/window/[^/"]+\.cpp)"' build/lint/compile_commands.json |
  cut -d'"' -f4 | grep -v _qmlcache |
  xargs -P "$(nproc)" -n 1 clang-tidy -p build/lint --quiet --checks=-bugprone-suspicious-include \
    --header-filter="^$PWD/(src|emulator|sample|bench)/" \
    --extra-arg=-Xclang --extra-arg=-analyzer-opt-analyze-headers
