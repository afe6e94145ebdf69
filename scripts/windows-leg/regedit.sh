# .reg files against Wine's own registry editor (sourced by
# scripts/windows-leg.sh, whose helpers and variables it uses: run_wine,
# fail_step, note, passed, skipped, root, winpath).
#
# Both directions, with non-ASCII text ("wörld") and values that span
# lines:
#   store -> regedit: a key written into a fresh registry store with
#     `tktools reg set`, exported by `tktools reg export` in each format and
#     imported by `regedit /S`, reads back through `reg query` as written;
#   regedit -> store: regedit's own export of that key (`regedit /E`,
#     version 5.00 in UTF-16LE) imported by `tktools reg import` into a fresh
#     store exports exactly as the first store does.
# The command-line tool is the Linux one of the build that ran the tests
# (scripts/test.sh) before the leg.

regedit_round_trips() {
  local tktools=""
  for t in "$root/build/dev/bin/tktools" "$root/build/release/bin/tktools"; do
    [ -x "$t" ] && tktools=$t && break
  done
  if [ -z "$tktools" ]; then
    echo "SKIP regedit round trips: no Linux tktools built (scripts/test.sh builds it)"
    skipped=$((skipped + 1))
    return
  fi
  note "regedit round trips"
  local work key=HKCU\\Software\\TessarkAO\\RoundTrip
  work=$(mktemp -d /tmp/tessarkao-regedit.XXXXXX)
  local store=(--registry "$work/store.sqlite3")
  "$tktools" reg set "$key" Greeting "hello wörld" "${store[@]}" &&
    "$tktools" reg set "$key" "Zwei Zeilen" $'erste Zeile\r\nzweite Zeile' "${store[@]}" &&
    "$tktools" reg set "$key" Lines "hex(7):65,72,73,74,65,00,7a,77,65,69,74,65,00,00" --reg-data "${store[@]}" &&
    "$tktools" reg set "$key" Count 42 --dword "${store[@]}" &&
    "$tktools" reg export "$key" "${store[@]}" >"$work/store5.reg" &&
    "$tktools" reg export "$key" --format 4 "${store[@]}" >"$work/store4.reg" ||
    { fail_step "writing the store to round-trip"; rm -rf "$work"; return; }

  # What reg query shows for the key (its output is in the OEM code page).
  local expected
  expected=$(printf '%s\n' "" "HKEY_CURRENT_USER\\Software\\TessarkAO\\RoundTrip" \
    "    Count    REG_DWORD    0x2a" \
    "    Greeting    REG_SZ    hello wörld" \
    "    Lines    REG_MULTI_SZ    erste\\0zweite" \
    "    Zwei Zeilen    REG_SZ    erste Zeile" "zweite Zeile" "")
  for format in 5 4; do
    run_wine reg delete "$key" /f >/dev/null 2>&1
    if ! run_wine regedit /S "$(winpath "$work/store$format.reg")"; then
      fail_step "regedit /S of tktools reg export --format $format"
      continue
    fi
    local shown
    shown=$(wine reg query "$key" 2>/dev/null </dev/null | iconv -f CP437 -t UTF-8 | tr -d '\r')
    if [ "$shown" = "$expected" ]; then
      passed=$((passed + 1))
      echo "PASS tktools reg export --format $format, imported by regedit, reads back equal in reg query"
    else
      fail_step "tktools reg export --format $format through regedit: reg query shows"
      printf '%s\n' "$shown" | sed 's/^/    /'
    fi
  done

  # And back: regedit's export into a fresh store.
  if run_wine regedit /E "$(winpath "$work/regedit.reg")" "HKEY_CURRENT_USER\\Software\\TessarkAO\\RoundTrip" &&
    "$tktools" reg import "$work/regedit.reg" --registry "$work/back.sqlite3" &&
    "$tktools" reg export "$key" --registry "$work/back.sqlite3" >"$work/back5.reg" &&
    cmp -s "$work/store5.reg" "$work/back5.reg"; then
    passed=$((passed + 1))
    echo "PASS regedit /E, imported by tktools reg import, exports equal to the store it came from"
  else
    fail_step "regedit /E through tktools reg import"
    iconv -f UTF-16 -t UTF-8 "$work/regedit.reg" 2>/dev/null | sed 's/^/    /'
  fi
  run_wine reg delete "$key" /f >/dev/null 2>&1
  rm -rf "$work"
}
