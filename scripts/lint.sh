#!/usr/bin/env bash
# Format and static checks over the sources git knows: lint.sh [SOURCE...], or lint.sh --format.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' '*.mm' | xargs clang-format --dry-run --Werror
[ "${1:-}" != --format ] || exit 0
# A compilation database without precompiled headers: clang cannot read GCC's.
mkdir -p build
cmake -S . -B build/lint -G Ninja -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON \
  -DBUILD_TESTING=OFF >build/configure-lint.log
# QML against the types that the sources declare; what is generated for it, clang-tidy reads too.
cmake --build build/lint --target quorvane_window_qmllint >build/qmllint.log || { cat build/qmllint.log >&2; exit 1; }
if grep -qE '^(Warning|Error)' build/qmllint.log; then cat build/qmllint.log >&2; exit 1; fi
sources=("$@")
[ $# -gt 0 ] || mapfile -t sources < <(git ls-files ':!src/platform/macos' 'src/*.cpp' 'emulator/*.cpp' 'sample/*.cpp' 'bench/*.cpp')
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p build/lint --quiet
