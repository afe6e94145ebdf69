#!/usr/bin/env bash
# Installs the Debian packages the project builds and tests with.  Idempotent:
# packages already present are skipped, and nothing is fetched when all are.
set -euo pipefail

packages=(
  build-essential cmake ninja-build ccache pkg-config git
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  libsqlite3-dev sqlite3 libfontconfig-dev fontconfig fonts-dejavu-core
  libxlsxwriter-dev nlohmann-json3-dev libeigen3-dev
  pybind11-dev python3-dev python3-pytest python3-openpyxl
  python3-mypy python3-build python3-venv
)
if [ "${1:-}" = "--windows" ]; then
  packages+=(mingw-w64 mingw-w64-tools wine wine64)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi
echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
