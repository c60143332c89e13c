#!/usr/bin/env bash
# Installs the Debian 12 packages that building and testing KvRichTextBox needs.
# Runs apt-get only when something is missing. Needs root (uses sudo when not root).
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev qt6-base-dev-tools libgl-dev qt6-tools-dev
  qt6-base-private-dev
  qt6-multimedia-dev
  fonts-liberation2
  clang libclang-rt-14-dev
  libreoffice-writer-nogui
  poppler-utils xvfb
  hunspell hunspell-en-us
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
