#!/usr/bin/env bash
# scripts/fuzz.sh TARGET [SECONDS]
#
# Builds the fuzz preset (clang, libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer) and runs fuzz_TARGET for SECONDS (default 60)
# in one process on one core, starting from the seed corpus fuzz/corpus/TARGET
# (the targets that write files run in a private folder, so paths are absolute).
# New inputs go to build/fuzz/corpus/TARGET, so the committed seeds stay as
# they are.  TARGET "all" runs every target in turn for SECONDS each.
#
# A finding (a crash, a sanitizer report, an input slower than 10 s, or more
# than 2 GiB asked for) is written to build/fuzz/findings/ and the script
# fails.  The last lines of each run give its executions per second.
set -euo pipefail
cd "$(dirname "$0")/.."
targets="pointfile regfile scene expression number calls"
target=${1:-}
seconds=${2:-60}
if [ -z "$target" ]; then
  echo "usage: scripts/fuzz.sh TARGET [SECONDS]   (TARGET: all $targets)" >&2
  exit 2
fi
[ "$target" = all ] || targets=$target

[ -f build/fuzz/build.ninja ] || cmake --preset fuzz >/dev/null
if ! cmake --build --preset fuzz -j2 >build/fuzz/build.log 2>&1; then
  grep -v '^\[' build/fuzz/build.log >&2
  echo "fuzz build failed" >&2
  exit 1
fi

mkdir -p build/fuzz/findings
for t in $targets; do
  bin=build/fuzz/bin/fuzz_$t
  [ -x "$bin" ] || { echo "no fuzz target '$t' (targets: $targets)" >&2; exit 2; }
  work=build/fuzz/corpus/$t
  mkdir -p "$work"
  echo "== fuzz_$t for ${seconds}s"
  log=build/fuzz/$t.log
  status=0
  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    "$bin" "$PWD/$work" "$PWD/fuzz/corpus/$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2560 \
    -malloc_limit_mb=2048 -max_len=8192 -print_final_stats=1 \
    -artifact_prefix="$PWD/build/fuzz/findings/$t-" >"$log" 2>&1 || status=$?
  grep -E '^(#[0-9]+ +DONE|stat::number_of_executed_units|stat::average_exec_per_sec)' "$log" || true
  if [ "$status" != 0 ]; then
    tail -n 60 "$log" >&2
    echo "fuzz_$t: finding (exit $status); the input is in build/fuzz/findings/, the log in $log" >&2
    exit 1
  fi
done
