#!/usr/bin/env bash
# Configures and builds one preset: build.sh PRESET [TARGET...]. QUORVANE_STRICT=ON: warnings are errors.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
mkdir -p build
if ! cmake --preset "$preset" -D QUORVANE_STRICT="${QUORVANE_STRICT:-OFF}" "${launcher[@]}" >"build/configure-$preset.log" 2>&1; then
  cat "build/configure-$preset.log" >&2
  exit 1
fi
targets=()
[ $# -eq 0 ] || targets=(--target "$@")
cmake --build --preset "$preset" "${targets[@]}"
