#!/usr/bin/env bash
# Sets up a fresh Debian 12 machine, builds KvRichTextBox and runs every test (no display needed):
# the QtTest executables under CTest, then the library and the test suites again built with
# AddressSanitizer and UndefinedBehaviorSanitizer, then the RTF reader's fuzz target (built with
# clang) for a bounded time.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh"
cd "$root/build"
status=0
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --timeout 1200 || status=$?

echo
echo "== The library and the test suites with AddressSanitizer and UndefinedBehaviorSanitizer"
# A build of its own, lightly optimised (-O1) to keep it quick; no benchmarks and no demo. The
# layering and package checks are scripts over the sources and the install, which the normal
# build has run.
cmake -S "$root" -B "$root/build-asan" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g" \
  -DKVRTB_SANITIZE=ON -DKVRTB_BUILD_BENCH=OFF -DKVRTB_BUILD_DEMO=OFF >/dev/null
cmake --build "$root/build-asan" -j"$(nproc)"
# Leaks are reported too (at each test program's exit), and any report fails its test.
ASAN_OPTIONS="detect_leaks=1" UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1" \
QT_QPA_PLATFORM=offscreen ctest --test-dir "$root/build-asan" -E '^(layering|package)$' --output-on-failure \
  --timeout 1800 || status=$?

echo
echo "== Fuzzing the RTF reader (clang, libFuzzer)"
cmake -S "$root" -B "$root/build-fuzz" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DKVRTB_BUILD_FUZZ=ON \
  -DKVRTB_BUILD_BENCH=OFF -DKVRTB_FUZZ_SECONDS="${KVRTB_FUZZ_SECONDS:-60}" >/dev/null
cmake --build "$root/build-fuzz" -j"$(nproc)" --target fuzz_rtfreader
QT_QPA_PLATFORM=offscreen ctest --test-dir "$root/build-fuzz" -R rtf_fuzz --output-on-failure || status=$?
exit $status
