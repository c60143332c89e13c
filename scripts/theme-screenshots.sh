#!/usr/bin/env bash
# Renders the control in a light and a dark palette at scale 1 and 2 into docs/images/ under
# Xvfb (Debian package xvfb). Builds the renderer first.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cmake --build "$root/build" --target kvrtb-theme-screenshots >/dev/null
for scale in 1 2; do
  QT_QPA_PLATFORM=xcb QT_SCALE_FACTOR=$scale xvfb-run -a -s "-screen 0 1600x1200x24" \
    "$root/build/tools/theme-screenshots/kvrtb-theme-screenshots" "$root/docs/images" "${scale}x"
done
