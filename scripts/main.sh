#!/usr/bin/env bash
# Sets up a fresh machine, builds the optimised library and runs the main job:
# a tool session against the library that prints what it made.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
export CCACHE_BASEDIR="$PWD"
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)"
out="${1:-out}"
mkdir -p "$out"
./build/release/bin/example_main_job "$out"
