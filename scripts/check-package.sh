#!/usr/bin/env bash
# Checks the installed package as a host developer meets it: installs the build into a staging
# prefix, builds examples/host and the README's "Use it in your application" code against it with
# find_package(KvRichTextBox), and runs both.
#   bash scripts/check-package.sh <build folder>
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="$(cd "${1:?usage: check-package.sh BUILD_DIR}" && pwd)"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
stage="$work/stage"

cmake --install "$build" --prefix "$stage" >/dev/null
for f in include/KvRichTextBox/kvrtb.h bin/kvrtb lib/cmake/KvRichTextBox/KvRichTextBoxConfig.cmake \
         lib/cmake/KvRichTextBox/KvRichTextBoxConfigVersion.cmake; do
  [ -e "$stage/$f" ] || { echo "not installed: $f"; exit 1; }
done
# Only the public headers are installed.
if find "$stage/include" -name '*_p.h' | grep -q .; then
  echo "private headers were installed:"; find "$stage/include" -name '*_p.h'; exit 1
fi
"$stage/bin/kvrtb" --help >/dev/null

generator=()
command -v ninja >/dev/null && generator=(-G Ninja)

echo "== examples/host against the installed package"
cmake -S "$root/examples/host" -B "$work/host" "${generator[@]}" -DCMAKE_PREFIX_PATH="$stage" >/dev/null
cmake --build "$work/host" >/dev/null
printf 'Installed and found.\r\n' > "$work/note.txt"
out=$(QT_QPA_PLATFORM=offscreen "$work/host/example-host" --print-text "$work/note.txt")
[ "$out" = "Installed and found." ] || { echo "example-host printed: $out"; exit 1; }

echo "== the README's code, as written"
mkdir -p "$work/readme"
awk '/^## Use it in your application/{on=1; next} /^## /{on=0} on' "$root/README.md" > "$work/section.md"
awk '/^```cmake/{on=1; next} /^```/{on=0} on' "$work/section.md" > "$work/readme/CMakeLists.txt"
awk '/^```cpp/{on=1; next} /^```/{on=0} on' "$work/section.md" > "$work/readme/main.cpp"
[ -s "$work/readme/CMakeLists.txt" ] && [ -s "$work/readme/main.cpp" ] \
  || { echo "README has no cmake and cpp block under 'Use it in your application'"; exit 1; }
lines=$(wc -l < "$work/section.md")
cmake -S "$work/readme" -B "$work/readme/build" "${generator[@]}" -DCMAKE_PREFIX_PATH="$stage" >/dev/null
cmake --build "$work/readme/build" >/dev/null
app=$(find "$work/readme/build" -maxdepth 1 -type f -executable | head -n 1)
# The program is an event loop: it must still be running when the time is up.
status=0
QT_QPA_PLATFORM=offscreen timeout 3 "$app" || status=$?
[ $status -eq 124 ] || { echo "the README program ended with status $status"; exit 1; }
echo "Package works ($lines lines of README section)."
