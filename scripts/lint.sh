#!/usr/bin/env bash
# Format and static checks over the sources git knows.
set -euo pipefail
cd "$(dirname "$0")/.."
git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
scripts/build.sh dev >/dev/null
git ls-files 'src/*.cpp' 'emulator/*.cpp' 'sample/*.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy -p build/dev --quiet
