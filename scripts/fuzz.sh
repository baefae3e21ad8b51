#!/usr/bin/env bash
# The fuzz targets: configures the fuzz build (clang, address and undefined-behaviour
# sanitizers, libFuzzer), builds the targets and runs each from a copy of its corpus in
# fuzz/corpus/. Any finding fails the run; its input is left in build/fuzz/findings/<target>/.
#
#   bash scripts/fuzz.sh                  every target briefly (the CI run, about 4 minutes)
#   bash scripts/fuzz.sh TARGET SECONDS   one target for longer (sheets or fuzz_sheets ...)
#
# FUZZ_JOBS=N runs N processes of the one target in a long run (default 1).
set -euo pipefail
cd "$(dirname "$0")/.."

if ! command -v clang++ >/dev/null || ! command -v clang >/dev/null ||
   ! compgen -G "/usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a" >/dev/null; then
  bash scripts/deps.sh clang libclang-rt-14-dev
fi

# Every target, the input size it takes at most, and its seconds in the CI run. The seven
# together stay within five minutes on two cores, building excluded.
targets=(finisher conversation exports store sheets parsepjl peimage)
declare -A max_len=([finisher]=8192 [conversation]=33000 [exports]=14000 [store]=4096
                    [sheets]=512 [parsepjl]=33000 [peimage]=65536)
declare -A ci_seconds=([finisher]=25 [conversation]=30 [exports]=35 [store]=30 [sheets]=45
                       [parsepjl]=20 [peimage]=15)

one=""
seconds=""
if [ "$#" -gt 0 ]; then
  one="${1#fuzz_}"
  seconds="${2:?usage: scripts/fuzz.sh [TARGET SECONDS]}"
  [ -n "${max_len[$one]:-}" ] || { echo "no fuzz target '$1' (${targets[*]})" >&2; exit 2; }
  targets=("$one")
fi

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)" --target fuzzers

bin=build/fuzz/fuzz
work=build/fuzz/runs
findings=build/fuzz/findings
failed=()
for t in "${targets[@]}"; do
  time_limit="${seconds:-${ci_seconds[$t]}}"
  corpus="$work/$t"
  rm -rf "$corpus"
  mkdir -p "$corpus" "$findings/$t"
  cp fuzz/corpus/"$t"/* "$corpus"/
  rm -f "$corpus"/*.py
  echo "== fuzz_$t for ${time_limit}s"
  args=(-max_total_time="$time_limit" -max_len="${max_len[$t]}" -timeout=30 -rss_limit_mb=3072
        -print_final_stats=1 -artifact_prefix="$findings/$t/")
  # A person's actions: long scripts from the start, not grown a byte at a time.
  [ "$t" = sheets ] && args+=(-len_control=0)
  if [ -n "$one" ] && [ "${FUZZ_JOBS:-1}" -gt 1 ]; then
    args+=(-fork="$FUZZ_JOBS")
  fi
  if "$bin/fuzz_$t" "${args[@]}" "$corpus" 2>"$work/$t.log"; then
    grep -E '^stat::(number_of_executed_units|average_exec_per_sec)' "$work/$t.log" || true
  else
    grep -E 'ERROR|SUMMARY|fuzz_[a-z]+: ' "$work/$t.log" | head -5 || true
    echo "fuzz_$t found a fault: see $work/$t.log and $findings/$t/" >&2
    failed+=("$t")
  fi
done

if [ "${#failed[@]}" -gt 0 ]; then
  echo "fuzz findings in: ${failed[*]}" >&2
  exit 1
fi
