#!/usr/bin/env bash
# The dialogs of tktools.dll under Wine on a virtual display: the server is
# registered in a prefix of its own (started on the display, so its windows
# are drawn) and com_dialogs_test drives the import dialog and the scene
# viewer through window messages.  Prints one PASS / FAIL / SKIP line per
# check, like the rest of the Windows leg.
#
#   scripts/windows-dialogs.sh [BIN_DIR [SCREENS_DIR]]
#
# BIN_DIR holds tktools.dll and com_dialogs_test.exe (default
# build/windows/bin); with SCREENS_DIR each dialog is also written there as
# a PNG (windows-*.png).
set -uo pipefail
cd "$(dirname "$0")/.."
root=$PWD
bin=$(realpath -m "${1:-build/windows/bin}")
screens=${2:+$(realpath -m "$2")}

if ! command -v xvfb-run >/dev/null || ! command -v wine >/dev/null; then
  echo "SKIP dialogs under Wine (xvfb-run or wine missing: scripts/setup.sh --windows)"
  exit 0
fi
if [ ! -f "$bin/com_dialogs_test.exe" ]; then
  echo "FAIL dialogs under Wine: $bin/com_dialogs_test.exe is not built"
  exit 1
fi

work=$(mktemp -d /tmp/tessarkao-dialogs.XXXXXX)
trap 'rm -rf "$work"' EXIT
export WINEPREFIX=$work/prefix WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
# The windows are the point here: not the headless interface.
unset TESSARKAO_UI
mkdir -p "$WINEPREFIX" "$work/shots"
winpath() { local p=$1; echo "Z:${p//\//\\}"; }

# Everything in one display session: the prefix's desktop is made on it.
# Output goes through a file (programs of the prefix inherit it).
xvfb-run -a -s "-screen 0 1280x1024x24" bash -c '
  wineboot -i >/dev/null 2>&1
  # Wine draws the title bars itself (there is no window manager here).
  wine reg add "HKCU\\Software\\Wine\\X11 Driver" /v Managed /t REG_SZ /d N /f >/dev/null 2>&1
  if ! wine regsvr32 /s "$1" >/dev/null 2>&1; then echo "FAIL regsvr32 tktools.dll for the dialogs"; fi
  timeout 300 wine "$2" "$3" "$4" >"$5" 2>&1 </dev/null
  echo "exit $?" >>"$5"
  wineserver -k >/dev/null 2>&1
' _ "$bin/tktools.dll" "$bin/com_dialogs_test.exe" "$(winpath "$root/examples/data")" \
  "$(winpath "$work/shots")" "$work/out"
tr -d '\r' <"$work/out" | grep -v '^exit \|^wine: Read access denied'
rc=$(sed -n 's/^exit //p' "$work/out" | tail -n 1)
[ "${rc:-1}" = 0 ] || grep -q '^FAIL ' "$work/out" || echo "FAIL com_dialogs_test exited with ${rc:-nothing}"

if [ -n "$screens" ]; then
  mkdir -p "$screens"
  for bmp in "$work"/shots/*.bmp; do
    [ -f "$bmp" ] || continue
    png=$screens/$(basename "${bmp%.bmp}").png
    if bmptopnm "$bmp" 2>/dev/null | pnmtopng >"$png" 2>/dev/null; then
      echo "  picture: $png"
    else
      echo "FAIL converting $(basename "$bmp") to PNG (netpbm)"
    fi
  done
fi
