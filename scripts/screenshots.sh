#!/usr/bin/env bash
# Pictures of the library's dialogs as a person sees them, in out/screens/
# (or the folder given):
#   linux-import-dialog.png, linux-import-dialog-file-chosen.png,
#   linux-scene-viewer.png     the Qt windows, from the Qt dialog test on a
#                              virtual display (needs the dev build);
#   windows-*.png              the same dialogs of tktools.dll under Wine,
#                              when the Windows build is there
#                              (scripts/windows-leg.sh makes it).
# Both come from the tests that drive the windows, so a picture exists only
# when its dialog did what the test asks of it.
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(realpath -m "${1:-out/screens}")
mkdir -p "$out"
status=0

if [ -x build/dev/tests/qt/test_qt ] || [ -x build/dev/bin/test_qt ]; then
  cmake --build --preset dev --target test_qt >/dev/null
  echo "== Linux (Qt) dialogs"
  if ! TK_SCREENS=$out ctest --preset dev -R '^qt$' --output-on-failure >/dev/null; then
    echo "FAIL the Qt dialog test (ctest --preset dev -R qt)"
    status=1
  fi
else
  echo "SKIP the Linux dialogs: build the dev preset first (scripts/test.sh)"
fi

if [ -f build/windows/bin/com_dialogs_test.exe ] && [ "$out/windows-scene-viewer.png" -nt build/windows/bin/tktools.dll ]; then
  echo "== Windows dialogs: pictures of this build are there already (the Windows leg made them)"
elif [ -f build/windows/bin/com_dialogs_test.exe ]; then
  echo "== Windows dialogs under Wine"
  scripts/windows-dialogs.sh build/windows/bin "$out" | tee "$out/windows-dialogs.log"
  grep -q '^FAIL ' "$out/windows-dialogs.log" && status=1
else
  echo "SKIP the Windows dialogs: no Windows build (scripts/windows-leg.sh makes it)"
fi
ls -l "$out"/*.png 2>/dev/null || true
exit $status
