#!/usr/bin/env bash
# Installs, with apt, whatever the build and the tests need and the machine lacks.
set -euo pipefail

needed=(g++ cmake ninja-build pkg-config libgtest-dev libbenchmark-dev
        libpugixml-dev nlohmann-json3-dev ccache python3)
missing=()
for p in "${needed[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
