#!/usr/bin/env bash
# Measures discovery in big made-up libraries: bench-library.sh [BUNDLE_COUNT] [FOLDER_COUNT]
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh release quorvane-bench-library >/dev/null
bundle=${1:-200000} folder=${2:-100000}

echo "A Photos bundle of $bundle pictures:"
build/bin/quorvane-bench-library bundle "$bundle"
echo "A folder of $folder pictures, and 1000 more while it is watched:"
build/bin/quorvane-bench-library folder "$folder"
