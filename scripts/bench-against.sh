#!/usr/bin/env bash
# scripts/bench-against.sh REV [BENCH] [ROUNDS]
#
# Compares a benchmark program of the working tree with the same program
# built from revision REV: both release builds, run in turns ROUNDS times
# (default 5) on the same machine in the same session, so that load and
# clock changes hit both alike.  Prints, per benchmark, the median time of
# each and the ratio now / REV (below 1: faster than REV).
#
#   scripts/bench-against.sh 61efec7 bench_dispatch
#
# REV's tree is exported to build/bench-base/<rev>/src and built there with
# the release preset; the working tree's program comes from build/release.
# With BENCH_SOURCE=worktree the baseline is built from the working tree's
# benchmark source (bench/BENCH.cpp) over REV's library, so that a changed
# benchmark still measures both libraries the same way.
set -euo pipefail
cd "$(dirname "$0")/.."
rev=${1:?usage: scripts/bench-against.sh REV [BENCH] [ROUNDS]}
bench=${2:-bench_dispatch}
rounds=${3:-5}
sha=$(git rev-parse --short "$rev^{commit}")
base=build/bench-base/$sha${BENCH_SOURCE:+-$BENCH_SOURCE}

if [ ! -x "$base/build/bin/$bench" ]; then
  rm -rf "$base/src" && mkdir -p "$base/src"
  git archive "$sha" | tar -x -C "$base/src"
  cmake -S "$base/src" -B "$base/build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DTK_BUILD_BENCH=ON \
    -DTK_BUILD_TESTS=OFF -DTK_BUILD_PYTHON=OFF >"$base/configure.log" 2>&1 ||
    { cat "$base/configure.log" >&2; exit 1; }
  cmake --build "$base/build" --target "$bench" -j2 >"$base/build.log" 2>&1 ||
    { tail -n 40 "$base/build.log" >&2; exit 1; }
fi
if [ "${BENCH_SOURCE:-}" = worktree ]; then
  for f in "bench/$bench.cpp" bench/*.hpp; do
    cmp -s "$f" "$base/src/$f" || cp "$f" "$base/src/$f"
  done
  cmake --build "$base/build" --target "$bench" -j2 >"$base/build.log" 2>&1 ||
    { tail -n 40 "$base/build.log" >&2; exit 1; }
fi
[ -f build/release/build.ninja ] || cmake --preset release >/dev/null
cmake --build build/release --target "$bench" -j2 >/dev/null

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
for i in $(seq "$rounds"); do
  "$base/build/bin/$bench" --benchmark_format=json --benchmark_out="$out/base$i.json" >/dev/null 2>&1
  "build/release/bin/$bench" --benchmark_format=json --benchmark_out="$out/now$i.json" >/dev/null 2>&1
done

/usr/bin/python3 - "$out" "$rounds" "$sha" <<'EOF'
import json, statistics, sys
out, rounds, sha = sys.argv[1], int(sys.argv[2]), sys.argv[3]
def times(prefix):
    t = {}
    for i in range(1, rounds + 1):
        for b in json.load(open(f"{out}/{prefix}{i}.json"))["benchmarks"]:
            if b.get("run_type", "iteration") == "iteration":
                t.setdefault(b["name"], []).append(b["cpu_time"])
    return {k: statistics.median(v) for k, v in t.items()}
base, now = times("base"), times("now")
print(f"{'benchmark':<28}{sha + ' (ns)':>16}{'now (ns)':>12}{'now/' + sha:>14}")
for name in now:
    if name in base:
        print(f"{name:<28}{base[name]:>16.2f}{now[name]:>12.2f}{now[name] / base[name]:>14.3f}")
EOF
