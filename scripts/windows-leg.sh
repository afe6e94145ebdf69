#!/usr/bin/env bash
# The Windows leg: cross-builds the in-process automation server tktools.dll
# with mingw-w64 and tests it under Wine, on a fresh machine.
#
#   1. installs mingw-w64, its tools and Wine (scripts/setup.sh --windows);
#   2. makes a fresh 64-bit Wine prefix (no display, no Mono, no Gecko) and
#      keeps one persistent wineserver for every step;
#   3. cross-builds (the build runs the type-library generator under Wine);
#   4. registers the DLL with regsvr32, runs the in-process adapter test, the
#      client test of the registered DLL and the VBScript tests (each must end
#      with its SENTINEL line: the script host prints nothing and exits 0 when
#      a script dies), then the dispatch benchmark;
#   5. builds, registers and tests the 32-bit DLL beside it (WoW64), and
#      round-trips .reg files with Wine's regedit (scripts/windows-leg/);
#   6. unregisters the DLL and checks that no key of it is left.
#
# Every check prints one PASS / FAIL / SKIP line; the leg ends with
# "N passed, M failed, K skipped" and exits non-zero on any failure.
set -uo pipefail
cd "$(dirname "$0")/.."
root=$PWD
passed=0
failed=0
skipped=0
started=$SECONDS

note() { printf '[windows-leg %3ds] %s\n' "$((SECONDS - started))" "$*"; }
fail_step() {
  echo "FAIL $1"
  failed=$((failed + 1))
}
finish() {
  exec 9>&-
  if [ -n "${WINEPREFIX:-}" ] && command -v wineserver >/dev/null; then
    wineserver -k >/dev/null 2>&1 || true
  fi
  echo "$passed passed, $failed failed, $skipped skipped"
  [ "$failed" -eq 0 ] && exit 0
  exit 1
}

# Counts the PASS / FAIL / SKIP lines of a test's output (already shown).
count() {
  local out=$1
  passed=$((passed + $(grep -c '^PASS ' <<<"$out")))
  failed=$((failed + $(grep -c '^FAIL ' <<<"$out")))
  skipped=$((skipped + $(grep -c '^SKIP ' <<<"$out")))
}

# Runs a Windows program and shows its output without carriage returns.  The
# output goes through a file, not a pipe: processes the program starts in the
# prefix (the desktop, RPC) inherit its output and would hold a pipe open.
run_wine() {
  local log rc
  log=$(mktemp /tmp/tessarkao-wine-out.XXXXXX)
  wine "$@" >"$log" 2>&1 </dev/null
  rc=$?
  tr -d '\r' <"$log"
  rm -f "$log"
  return "$rc"
}

# Runs a test program that prints PASS/FAIL lines and counts them; an exit
# status other than 0 without a FAIL line of its own is a failure too.
run_test_program() {
  local name=$1 out rc
  shift
  out=$(run_wine "$@")
  rc=$?
  echo "$out"
  count "$out"
  [ $rc -eq 0 ] || grep -q '^FAIL ' <<<"$out" || fail_step "$name exited with $rc"
}

winpath() { local p=$1; echo "Z:${p//\//\\}"; }

note "installing mingw-w64 and Wine"
if ! scripts/setup.sh --windows; then
  fail_step "installing mingw-w64 and Wine"
  finish
fi

export WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" TESSARKAO_UI=headless
unset DISPLAY WAYLAND_DISPLAY
export WINEPREFIX
WINEPREFIX=$(mktemp -d /tmp/tessarkao-wine.XXXXXX)/prefix
mkdir -p "$WINEPREFIX"
export CCACHE_BASEDIR=$root

note "new Wine prefix $WINEPREFIX"
wineserver -p || { fail_step "starting wineserver"; finish; }
wineboot -i >/dev/null 2>&1 &
boot=$!

note "cross-building tktools.dll"
build=build/windows
if cmake --preset windows >/dev/null && cmake --build "$build" -j "$(nproc)"; then
  passed=$((passed + 1))
  echo "PASS cross-build"
else
  fail_step "cross-build"
  finish
fi
wait "$boot" || true
# A program started when no other one runs waits about ten seconds for the
# prefix's services (RPC, the desktop) to come up again.  One idle command
# interpreter, reading a pipe that only this script holds open, keeps them up
# for the whole leg; it ends with the script (or with wineserver -k).
mkfifo "$WINEPREFIX/../keep-alive"
wine cmd <"$WINEPREFIX/../keep-alive" >/dev/null 2>&1 &
exec 9<>"$WINEPREFIX/../keep-alive"  # read-write: never waits for the reader
bin=$root/$build/bin
served=$root/$build/src/com/ServedClasses.txt
x86_64-w64-mingw32-objdump -p "$bin/tktools.dll" | grep -q 'DLL Name: libstdc++\|DLL Name: libgcc\|DLL Name: libwinpthread' &&
  fail_step "tktools.dll depends on compiler runtime DLLs"

note "in-process adapter test"
run_test_program com_adapter_test "$bin/com_adapter_test.exe"

note "registering tktools.dll"
if run_wine regsvr32 /s "$bin/tktools.dll"; then
  passed=$((passed + 1))
  echo "PASS regsvr32 tktools.dll"
else
  fail_step "regsvr32 tktools.dll"
fi

note "client test of the registered DLL"
run_test_program com_client_test "$bin/com_client_test.exe"

note "VBScript tests"
scripts_dir=$(mktemp -d /tmp/tessarkao-vbs.XXXXXX)
for test in tests/com/wine/*.vbs; do
  name=$(basename "$test")
  [ "$name" = harness.vbs ] && continue
  # The host has no ExecuteGlobal: the harness goes in front of each script.
  cat tests/com/wine/harness.vbs "$test" >"$scripts_dir/$name"
  out=$(run_wine cscript //nologo "$(winpath "$scripts_dir/$name")" "$(winpath "$served")")
  echo "$out"
  count "$out"
  if [ "$(tail -n 1 <<<"$out")" != "SENTINEL $name" ]; then
    fail_step "$name did not reach its end (a script error stops it silently)"
  fi
done

# The 32-bit server in the same prefix, and .reg files against regedit.
source scripts/windows-leg/wow64.sh && wow64_leg
source scripts/windows-leg/regedit.sh && regedit_round_trips
note "dialogs on a virtual display"; out=$(scripts/windows-dialogs.sh "$bin" out/screens); echo "$out"; count "$out"

note "dispatch benchmark"
run_wine "$bin/com_dispatch_bench.exe" || fail_step "com_dispatch_bench"

note "unregistering tktools.dll"
if run_wine regsvr32 /u /s "$bin/tktools.dll"; then
  passed=$((passed + 1))
  echo "PASS regsvr32 /u tktools.dll"
else
  fail_step "regsvr32 /u tktools.dll"
fi
out=$(run_wine "$bin/com_client_test.exe" --unregistered)
echo "$out"
count "$out"
exec 9>&-
wineserver -k >/dev/null 2>&1 || true
rm -rf "$scripts_dir" "$(dirname "$WINEPREFIX")"
unset WINEPREFIX
note "done"
finish
