#!/usr/bin/env bash
# Builds Vantrel and runs its live demo.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
bash scripts/install-deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DVANTREL_BUILD_TESTS=OFF >/dev/null
cmake --build build/release -j "$(nproc)"
exec ./build/release/apps/demo/vantrel-demo "$@"
