#!/usr/bin/env bash
# Installs the Debian packages the project builds and tests with.  Idempotent:
# packages already present are skipped, and nothing is fetched when all are.
set -euo pipefail

packages=(
  build-essential cmake ninja-build ccache pkg-config git
  googletest libgtest-dev libgmock-dev libbenchmark-dev
  libsqlite3-dev sqlite3 libfontconfig-dev libfreetype-dev fontconfig fonts-dejavu-core
  libxlsxwriter-dev nlohmann-json3-dev libeigen3-dev
  pybind11-dev python3-dev python3-pytest python3-openpyxl
  python3-mypy python3-build python3-venv python3-setuptools python3-wheel
  qt6-base-dev xvfb xauth
  clang-14 libclang-rt-14-dev
)
if [ "${1:-}" = "--windows" ]; then
  packages+=(mingw-w64 mingw-w64-tools wine wine64 fonts-wine netpbm)
  wow64=1
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive

# Wine's 32-bit half (i386), which runs the 32-bit server's tests in a WoW64
# prefix.  Without it the Windows leg still builds that server but skips
# running it, and says so.
install_wow64() {
  dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null | grep -q "install ok installed" && return 0
  echo "setup: installing wine32 (i386)"
  $sudo dpkg --add-architecture i386
  $sudo apt-get update -qq || true
  if ! $sudo apt-get install -y -qq --no-install-recommends wine32:i386 >/dev/null; then
    # An i386 package list that cannot be fetched would fail every later
    # update: the architecture goes again (dpkg keeps it while i386
    # packages are installed).
    $sudo dpkg --remove-architecture i386 2>/dev/null || true
    echo "setup: wine32 (i386) cannot be installed now; the 32-bit server will not be run" >&2
  fi
}

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -ne 0 ]; then
  echo "setup: installing ${missing[*]}"
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
if [ -n "${wow64:-}" ]; then
  install_wow64
fi
