#!/usr/bin/env bash
# Configures and builds KvRichTextBox into build/ (Release with debug info, Ninja).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cmake -S "$root" -B "$root/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
cmake --build "$root/build" -j"$(nproc)"
