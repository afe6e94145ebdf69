' Shared by the VBScript tests; the runner puts this file in front of each
' test script (the script host has no ExecuteGlobal).  Checks that print one
' line each, the list of classes this build serves (first script argument),
' and the closing lines.
' The script host prints nothing and exits 0 when a script dies on an error,
' so every script ends with "SENTINEL <name>"; the runner counts a script
' without it as failed.
Option Explicit
Dim gPassed, gFailed, gSkipped, gServed
gPassed = 0 : gFailed = 0 : gSkipped = 0

Sub Check(name, condition)
  If condition Then
    gPassed = gPassed + 1
    WScript.Echo "PASS " & name
  Else
    gFailed = gFailed + 1
    WScript.Echo "FAIL " & name
  End If
End Sub

Sub Skip(name)
  gSkipped = gSkipped + 1
  WScript.Echo "SKIP " & name
End Sub

' The error a statement raised, as "number|source"; clears it.
Function Caught()
  Caught = Err.Number & "|" & Err.Source
  Err.Clear
End Function

Function IsServed(progId)
  If IsEmpty(gServed) Then
    Set gServed = CreateObject("Scripting.Dictionary")
    gServed.CompareMode = 1
    Dim fso, f, line
    Set fso = CreateObject("Scripting.FileSystemObject")
    Set f = fso.OpenTextFile(WScript.Arguments(0), 1)
    Do Until f.AtEndOfStream
      line = Trim(f.ReadLine())
      If line <> "" Then gServed(line) = True
    Loop
    f.Close
  End If
  IsServed = gServed.Exists(progId)
End Function

' True when every class is served; otherwise reports the test as skipped.
' (The script host lacks Join, so the list is put together by hand.)
Function Needs(name, progIds)
  Dim p, all, list
  all = True
  list = ""
  For Each p In progIds
    If Not IsServed(p) Then all = False
    If list <> "" Then list = list & ", "
    list = list & p
  Next
  If Not all Then Skip name & " (needs " & list & ")"
  Needs = all
End Function

Sub Finish(scriptName)
  WScript.Echo "RESULT " & gPassed & " passed, " & gFailed & " failed, " & gSkipped & " skipped"
  WScript.Echo "SENTINEL " & scriptName
  If gFailed > 0 Then WScript.Quit 1
  WScript.Quit 0
End Sub
