#!/usr/bin/env bash
# Installs what is missing, builds a release build, and runs qbrefactor on the project in
# examples/: the list of commands, a parse of every file, the preprocessor's output for one
# file, and what a file that can't be read looks like.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DQB_TESTS=OFF -DQB_BENCH=OFF >/dev/null
cmake --build build/release -j "$(nproc)"

qbrefactor=build/release/bin/qbrefactor
show() {
  echo
  echo "\$ qbrefactor $*"
  "$qbrefactor" "$@"
}

show --help
show parse -v -I examples/include -isystem examples/sysinclude -DUSE_TAU=6.283185 examples/src/geometry.c \
  examples/src/Inventory.cpp examples/src/main.cpp
show preprocess -I examples/include -isystem examples/sysinclude examples/src/geometry.c
# A missing file is reported against itself, and the run fails; --keep-going parses the rest.
set +e
show parse --keep-going -I examples/include -isystem examples/sysinclude examples/src/main.cpp examples/src/missing.cpp
status=$?
set -e
if [ "$status" -ne 1 ]; then
  echo "expected exit status 1 for the missing file, got $status" >&2
  exit 1
fi
echo "(exit status 1, as expected: one file has errors)"
