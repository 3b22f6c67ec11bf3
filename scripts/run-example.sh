#!/usr/bin/env bash
# Installs what is missing, builds a release build, and runs qbrefactor on examples/.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DQB_TESTS=OFF >/dev/null
cmake --build build/release -j "$(nproc)"
if [ -x build/release/bin/qbrefactor ]; then
  exec build/release/bin/qbrefactor parse examples/*.c examples/*.cpp
fi
echo "the engine module is built: $(ls build/release/lib/libqbrefactor.so)"
