#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each of them for a bounded time.
#   bash scripts/fuzz.sh            smoke run: 15 seconds per target (what CI runs)
#   bash scripts/fuzz.sh 3600       long run: an hour per target
#   bash scripts/fuzz.sh 600 intake one target
#   FUZZ_RUNS=10000000 FUZZ_TIMEOUT=60 bash scripts/fuzz.sh 0
#                                   long run: ten million inputs per target
# Inputs in fuzz/regressions/<target>/ (findings fixed before) are run first. Findings are
# written to build/fuzz/findings/<target>/; the corpora grow in
# build/fuzz/corpus/<target>/, seeded from examples/ and fuzz/seeds/.
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$root"
seconds="${1:-15}"
shift || true
runs="${FUZZ_RUNS:--1}"
# Seconds one input may take: a long run beside other work (or under nice) may be starved of
# the processor for longer than any input needs, and would report that as a hang.
timeout="${FUZZ_TIMEOUT:-10}"
# The targets hand their inputs to the readers as files: a memory-backed scratch directory
# makes that several times faster than a disk one.
if [ -z "${TMPDIR:-}" ] && [ -d /dev/shm ] && [ -w /dev/shm ]; then
  export TMPDIR=/dev/shm
fi
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  targets=(profile_file description decipher column_parser symbol_file value_text_file
           user_buffer property_bag intake biff_writer)
fi

cmake -S . -B build/fuzz -G Ninja -DCMAKE_CXX_COMPILER=clang++-14 \
  -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVANTREL_FUZZ=ON -DVANTREL_WERROR=ON \
  -DVANTREL_BUILD_TESTS=OFF -DVANTREL_BUILD_APPS=OFF -DVANTREL_BUILD_QT=OFF \
  -DVANTREL_BUILD_MODBUS=OFF >/dev/null
cmake --build build/fuzz -j "$(nproc)"

# Seeds: the example files, with the mode byte some targets read first.
seed() {  # seed TARGET NAME PREFIX-BYTE(or "") FILE
  local dir="build/fuzz/corpus/$1"
  mkdir -p "$dir"
  { [ -n "$3" ] && printf "\\x$3"; cat "$4"; } >"$dir/$2"
}
ex=examples
seed profile_file vtl "" $ex/PMP1_pumps.vtl
seed description plain "03" $ex/PMP1_pumps.vtl
seed description enciphered "02" $ex/PMP1_pumps.vtld
seed decipher vtld "" $ex/PMP1_pumps.vtld
seed symbol_file sym "" $ex/pumps_symbols.sym
seed value_text_file texts "01" $ex/pumps_texts.txt
seed user_buffer vtlr "00" $ex/tanks.vtlr
for t in column_parser property_bag intake biff_writer; do
  mkdir -p "build/fuzz/corpus/$t"
  cp fuzz/seeds/$t/* "build/fuzz/corpus/$t/" 2>/dev/null || true
done

failed=0
for t in "${targets[@]}"; do
  mkdir -p "build/fuzz/findings/$t"
  # Inputs that once broke an invariant must keep passing.
  if [ -d "fuzz/regressions/$t" ]; then
    if ! build/fuzz/fuzz/fuzz_$t fuzz/regressions/$t/* >"build/fuzz/$t.regressions.log" 2>&1; then
      echo "fuzz_$t fails on a regression input: see build/fuzz/$t.regressions.log"
      failed=1
    fi
  fi
  echo "== fuzz_$t for ${seconds}s (runs: $runs)"
  if ! build/fuzz/fuzz/fuzz_$t -max_total_time="$seconds" -runs="$runs" -rss_limit_mb=2048 -timeout="$timeout" \
      -print_final_stats=1 -artifact_prefix="build/fuzz/findings/$t/" \
      "build/fuzz/corpus/$t" 2>"build/fuzz/$t.log"; then
    echo "fuzz_$t found a problem: see build/fuzz/$t.log and build/fuzz/findings/$t/"
    tail -30 "build/fuzz/$t.log"
    failed=1
  fi
  grep -E "stat::number_of_executed_units|stat::new_units_added" "build/fuzz/$t.log" || true
done
exit $failed
