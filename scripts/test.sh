#!/usr/bin/env bash
# Builds everything under AddressSanitizer, UBSan and LeakSanitizer with warnings as errors,
# and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

build=${QB_TEST_BUILD_DIR:-build/asan}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
      -DQB_SANITIZE=ON -DQB_WERROR=ON -DQB_BENCH=OFF >/dev/null
cmake --build "$build" -j "$(nproc)"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

# Real code written by others: a fixed sample, checked against the recorded expectations.
tests/corpus/selftest/run
tests/corpus/fetch >/dev/null
tests/corpus/run --quick --tool "$build/bin/qbrefactor"

cd "$build" && ctest --output-on-failure -j "$(nproc)"
