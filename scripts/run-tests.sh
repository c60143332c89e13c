#!/usr/bin/env bash
# Sets up a fresh Debian 12 machine, builds KvRichTextBox and runs every test (no display needed):
# the QtTest executables under CTest, then the RTF reader's fuzz target (built with clang) for a
# bounded time.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh"
cd "$root/build"
status=0
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --timeout 1200 || status=$?

echo
echo "== Fuzzing the RTF reader (clang, libFuzzer)"
cmake -S "$root" -B "$root/build-fuzz" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DKVRTB_BUILD_FUZZ=ON \
  -DKVRTB_BUILD_BENCH=OFF -DKVRTB_FUZZ_SECONDS="${KVRTB_FUZZ_SECONDS:-60}" >/dev/null
cmake --build "$root/build-fuzz" -j"$(nproc)" --target fuzz_rtfreader
QT_QPA_PLATFORM=offscreen ctest --test-dir "$root/build-fuzz" -R rtf_fuzz --output-on-failure || status=$?
exit $status
