#!/usr/bin/env bash
# Sets up a fresh Debian 12 machine, builds KvRichTextBox and starts the demo host window.
# With no display it says so, renders the window offscreen to a PNG and shows the command-line tool.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh"
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec "$root/build/apps/demo/kvrtb-demo" "$@"
fi
picture="$root/build/kvrtb-demo.png"
echo "No display found (neither DISPLAY nor WAYLAND_DISPLAY is set): the demo window cannot be shown here."
echo "Rendering it offscreen instead."
QT_QPA_PLATFORM=offscreen "$root/build/apps/demo/kvrtb-demo" --screenshot "$picture" "$@" 2>/dev/null
echo
echo "The command-line tool works without a display:"
"$root/build/apps/kvrtb/kvrtb" --help || true
