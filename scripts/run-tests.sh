#!/usr/bin/env bash
# Sets up a fresh Debian 12 machine, builds KvRichTextBox and runs every test (no display needed).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh" -DKVRTB_BUILD_FUZZ=ON
cd "$root/build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --timeout 1200
