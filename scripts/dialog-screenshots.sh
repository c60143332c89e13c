#!/usr/bin/env bash
# Renders the word-count, font, random-word and find dialogs into docs/images/ under Xvfb (Debian
# package xvfb). Builds the renderer first.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cmake --build "$root/build" --target kvrtb-dialog-screenshots >/dev/null
QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1280x1024x24" \
  "$root/build/tools/dialog-screenshots/kvrtb-dialog-screenshots" "$root/docs/images"
