#!/usr/bin/env bash
# Sets up a fresh machine, builds with AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs every test (C++ and Python).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
export CCACHE_BASEDIR="$PWD"
cmake --preset dev >/dev/null
cmake --build --preset dev -j "$(nproc)"
ctest --preset dev -j "$(nproc)"
