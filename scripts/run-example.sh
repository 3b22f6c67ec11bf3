#!/usr/bin/env bash
# Installs what is missing, builds a release build, and runs qbrefactor on the project in
# examples/ as a user would: with the configuration of the installed compilers (detected on
# first use) and the machine's own headers. Shows the list of commands, a parse of every file,
# the preprocessor's output for one file, and what a file that can't be read looks like.
# Exits non-zero when a command doesn't do what it shows.
set -uo pipefail
cd "$(dirname "$0")/.."
set -e
scripts/install-deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DQB_TESTS=OFF -DQB_BENCH=OFF >/dev/null
cmake --build build/release -j "$(nproc)"
set +e

qbrefactor=build/release/bin/qbrefactor
failed=0
# Runs one command and checks its exit status against the one expected.
show() {
  local expected=$1
  shift
  echo
  echo "\$ qbrefactor $*"
  "$qbrefactor" "$@"
  local status=$?
  if [ "$status" -ne "$expected" ]; then
    echo "(exit status $status; expected $expected)" >&2
    failed=1
  fi
}

show 0 --help
show 0 parse -v -I examples/include -DUSE_TAU=6.283185 examples/src/geometry.c \
  examples/src/Inventory.cpp examples/src/main.cpp
show 0 preprocess -I examples/include examples/src/geometry.c
# A missing file is reported against itself, and the run fails; --keep-going parses the rest.
show 1 parse --keep-going -I examples/include examples/src/geometry.c examples/src/missing.c
exit $failed
