#!/usr/bin/env bash
# Sets up, builds and runs every test twice: an optimised build, and one under AddressSanitizer and
# UndefinedBehaviorSanitizer. Usage: scripts/test.sh [--quick]   (--quick skips the sanitized build)
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

jobs=${LW_JOBS:-2}

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs"

if [ "${1:-}" != "--quick" ]; then
  cmake -S . -B build-sanitize -G Ninja -DCMAKE_BUILD_TYPE=Sanitize -DLW_BUILD_BENCH=OFF
  cmake --build build-sanitize -j"$jobs"
  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1 \
    ctest --test-dir build-sanitize --output-on-failure -j"$jobs"
fi
