#!/usr/bin/env bash
# Builds Vantrel and runs its live demo: `vantrel run` on the embedded virtual controller.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
bash scripts/install-deps.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release -DVANTREL_BUILD_TESTS=OFF >/dev/null
cmake --build build/release -j "$(nproc)" --target vantrel-cli
# A live trace of the embedded virtual controller (a pump station): 50 rows, then the table
# is exported to a spreadsheet file.
mkdir -p build/demo
exec ./build/release/apps/vantrel/vantrel run --records 50 --date-col --time-col --status-col \
  --export build/demo/pumps.xls --export-on-exit "$@"
