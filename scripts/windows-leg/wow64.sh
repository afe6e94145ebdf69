# The 32-bit server in the Windows leg (sourced by scripts/windows-leg.sh,
# whose helpers and variables it uses: run_wine, count, fail_step, note,
# passed, skipped, root, bin, served).
#
# 32-bit automation hosts load only a 32-bit in-process server, so the leg
# also builds tktools.dll for x86 (mingw-w64's i686 toolchain) and, in the
# same WoW64 prefix where the 64-bit server is registered, registers it with
# the 32-bit regsvr32, checks that each server is registered in its own
# registry view, runs the client test and a VBScript session through the
# 32-bit script host, and unregisters it again, leaving the 64-bit server
# registered.

wow64_leg() {
  note "cross-building the 32-bit tktools.dll"
  local build86=build/windows-x86
  # Only what the leg runs; the IDL and string table come from the 64-bit
  # build, whose generator has already run.
  if cmake --preset windows-x86 -DTK_COM_GENERATED_FROM="$root/build/windows/src/com" >/dev/null &&
    cmake --build "$build86" -j "$(nproc)" --target tktools com_client_test; then
    passed=$((passed + 1))
    echo "PASS cross-build x86"
  else
    fail_step "cross-build x86"
    return
  fi
  local bin86=$root/$build86/bin
  if i686-w64-mingw32-objdump -p "$bin86/tktools.dll" | grep -q 'DLL Name: libstdc++\|DLL Name: libgcc\|DLL Name: libwinpthread'; then
    fail_step "the 32-bit tktools.dll depends on compiler runtime DLLs"
  fi
  if ! i686-w64-mingw32-objdump -f "$bin86/tktools.dll" | grep -q 'file format pei-i386'; then
    fail_step "the 32-bit tktools.dll is not an x86 DLL"
  fi

  local syswow64="C:\\windows\\syswow64"
  if [ ! -e "$WINEPREFIX/drive_c/windows/syswow64/kernel32.dll" ] || ! run_wine "$syswow64\\cmd.exe" /c exit >/dev/null 2>&1; then
    local why="Wine has no 32-bit half here (scripts/setup.sh --windows installs wine32 from i386)"
    echo "SKIP registering the 32-bit tktools.dll: $why"
    echo "SKIP 32-bit client test: $why"
    echo "SKIP 32-bit VBScript session: $why"
    skipped=$((skipped + 3))
    return
  fi

  note "registering the 32-bit tktools.dll beside the 64-bit one"
  if run_wine "$syswow64\\regsvr32.exe" /s "$bin86/tktools.dll"; then
    passed=$((passed + 1))
    echo "PASS 32-bit regsvr32 tktools.dll"
  else
    fail_step "32-bit regsvr32 tktools.dll"
  fi
  # Each view names its own DLL for the same class.
  local clsid view64 view32
  clsid=$(run_wine reg query 'HKCR\TessarkAO.TKVector4d\Clsid' /ve | grep -o '{[0-9A-Fa-f-]*}' | head -n 1)
  view64=$(run_wine reg query "HKCR\\CLSID\\$clsid\\InprocServer32" /ve /reg:64)
  view32=$(run_wine reg query "HKCR\\CLSID\\$clsid\\InprocServer32" /ve /reg:32)
  if [ -n "$clsid" ] && grep -qi 'build\\windows\\bin\\tktools.dll' <<<"$view64" &&
    grep -qi 'build\\windows-x86\\bin\\tktools.dll' <<<"$view32"; then
    passed=$((passed + 1))
    echo "PASS each server registered in its own registry view"
  else
    fail_step "each server registered in its own registry view: $clsid / $view64 / $view32"
  fi

  note "client test of the 32-bit DLL"
  local out
  run_test_program "32-bit com_client_test" "$bin86/com_client_test.exe"

  note "VBScript session through the 32-bit script host"
  local scripts86
  scripts86=$(mktemp -d /tmp/tessarkao-vbs86.XXXXXX)
  cat tests/com/wine/harness.vbs tests/com/wine/session.vbs >"$scripts86/session.vbs"
  out=$(run_wine "$syswow64\\cscript.exe" //nologo "$(winpath "$scripts86/session.vbs")" "$(winpath "$served")")
  echo "$out"
  count "$out"
  if [ "$(tail -n 1 <<<"$out")" != "SENTINEL session.vbs" ]; then
    fail_step "session.vbs under the 32-bit script host did not reach its end"
  fi
  rm -rf "$scripts86"

  note "unregistering the 32-bit tktools.dll"
  if run_wine "$syswow64\\regsvr32.exe" /u /s "$bin86/tktools.dll"; then
    passed=$((passed + 1))
    echo "PASS 32-bit regsvr32 /u tktools.dll"
  else
    fail_step "32-bit regsvr32 /u tktools.dll"
  fi
  # The 64-bit server is still whole.
  out=$(run_wine "$bin/com_client_test.exe")
  if grep -q '^FAIL ' <<<"$out"; then
    echo "$out" | grep '^FAIL '
    fail_step "the 64-bit server after the 32-bit one was unregistered"
  else
    passed=$((passed + 1))
    echo "PASS the 64-bit server stays registered after the 32-bit one goes"
  fi
}
