#!/usr/bin/env bash
# Generates the API reference of the public headers with doxygen (installs it when missing) into
# build/api-docs/ (open build/api-docs/index.html).
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
if ! command -v doxygen >/dev/null; then
  SUDO=""; [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  $SUDO apt-get update -qq && $SUDO apt-get install -y -qq doxygen >/dev/null
fi
out="$root/build/api-docs"
mkdir -p "$out"
cd "$root"
( cat docs/Doxyfile; echo "OUTPUT_DIRECTORY = $out" ) | doxygen -
echo "API reference: $out/index.html"
