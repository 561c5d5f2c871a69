#!/usr/bin/env bash
# Draws the pictures of the documentation anew, with the tests of the window, into docs/images.
set -euo pipefail
cd "$(dirname "$0")/.."
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

draw() { # SCALE TEST
  QT_SCALE_FACTOR=$1 QUORVANE_WINDOW_SHOTS=$folder build/dev/bin/test-window --gtest_filter="$2" --gtest_brief=1
}

scripts/build.sh dev test-window
draw 1 'StatePicturesTest.*'
draw 2 'WindowStoryTest.aSyncRunsAndIsStopped'
cp "$folder"/states-{light,dark}.png docs/images/
cp "$folder/hero-done-light.png" docs/images/window-light.png
cp "$folder/hero-done-dark.png" docs/images/window-dark.png
cp "$folder/inspector-open-light.png" docs/images/inspector.png
