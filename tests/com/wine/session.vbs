' A script session as the host's scripts use the library: vectors and
' matrices with by-reference outputs, a column-set sort, a profile and the
' localizer, and the error numbers a script sees.
' The runner puts harness.vbs in front of this script.

Dim v, w, m, p, x, y, z, a, cs, loc, prof, outline, r

If Needs("localizer texts and errors", Array("TessarkAO.Localizer")) Then
  Set loc = CreateObject("TessarkAO.Localizer")
  Check "LoadString(101)", loc.LoadString(101) = "millimeters"
  Check "member names ignore case; texts keep their double blanks", _
    loc.loadSTRING(124) = "Import will be canceled.  Please refer to help for further instructions."
  On Error Resume Next
  x = loc.LoadString(125)
  Check "LoadString(125) raises 326 from TessarkAO.Localizer", Caught() = "326|TessarkAO.Localizer"
  x = loc.LoadString()
  Check "a missing argument is 449", Caught() = "449|TessarkAO.Localizer"
  x = loc.LoadString("abc")
  Check "an argument that does not convert is 13", Caught() = "13|TessarkAO.Localizer"
  x = loc.Unknown
  Check "an unknown member is 438", Err.Number = 438
  Err.Clear
  On Error GoTo 0
End If

If Needs("vectors with by-reference outputs", Array("TessarkAO.TKVector4d")) Then
  Set v = CreateObject("TessarkAO.TKVector4d")
  v.SetPosition 1, 2, 3
  x = 0 : y = 0 : z = 0
  v.GetPosition x, y, z
  Check "GetPosition writes the script's variables", x = 1 And y = 2 And z = 3
  Check "outputs arrive as Double", TypeName(x) = "Double"
  v.X = "4.5"
  Check "a let converts text", v.X = 4.5
  Set w = CreateObject("TessarkAO.TKVector4d")
  v.SetPosition 1, 0, 0
  w.SetPosition 0, 1, 0
  a = v.AngleBetween(w)
  Check "AngleBetween of X and Y is 90.00000000000009", a = 90.00000000000009 And a <> 90
  Check "Cross of X and Y is Z", v.Cross(w).Z = 1
  v.SetPosition 1e-10, 2, -5e-10
  Check "SetPosition snaps tiny components to 0", v.X = 0 And v.Y = 2 And v.Z = 0
  On Error Resume Next
  x = v.Value(4)
  Check "Value(4) is error 9 from TessarkAO.TKVector4d", Caught() = "9|TessarkAO.TKVector4d"
  v.X = "abc"
  Check "a let that does not convert is 13", Err.Number = 13
  Err.Clear
  w.SetPosition 0, 0, 0
  v.MoveAlongVector w, 1
  Check "moving along a zero vector is 11", Err.Number = 11
  Err.Clear
  On Error GoTo 0
End If

If Needs("matrices", Array("TessarkAO.TKMatrix4d", "TessarkAO.TKVector4d")) Then
  Set m = CreateObject("TessarkAO.TKMatrix4d")
  Check "a new matrix is the identity", m.Value(0, 0) = 1 And m.Value(3, 3) = 1 And m.Value(0, 1) = 0
  m.SetRotation 3, 90
  Set v = CreateObject("TessarkAO.TKVector4d")
  v.SetPosition 1, 0, 0
  Set p = m.MultiplyByPoint(v)
  Check "a quarter turn about Z carries X to Y", p.X = 0 And p.Y = 1 And p.Z = 0
  m.SetTranslation 5, 6, 7, False
  m.GetTranslation x, y, z
  Check "GetTranslation writes its outputs", x = 5 And y = 6 And z = 7
  Check "the determinant of a rotation is 1", Abs(m.Determinant - 1) < 1e-12
End If

If Needs("column-set sort", Array("TessarkAO.TKColumnSet", "TessarkAO.TKColumn")) Then
  Set cs = CreateObject("TessarkAO.TKColumnSet")
  cs.AddColumn 3
  cs.AddColumn 1
  cs.NumberOfRows = 3
  cs.Item(1).SetAt 1, "a" : cs.Item(2).SetAt 1, 2
  cs.Item(1).SetAt 2, "b" : cs.Item(2).SetAt 2, 1
  cs.Item(1).SetAt 3, "a" : cs.Item(2).SetAt 3, 1
  r = cs.Sort(1, 2, 1)
  Check "Sort reports success", r
  Check "sorted by numbers, then letters", _
    cs.GetElementAt(1, 1) & cs.GetElementAt(2, 1) & cs.GetElementAt(1, 2) & cs.GetElementAt(2, 2) & _
    cs.GetElementAt(1, 3) & cs.GetElementAt(2, 3) = "a1b1a2"
  Check "the default member of a column set is its column", cs(2).GetAt(3) = 2
End If

If Needs("profiles", Array("TessarkAO.TKProfile", "TessarkAO.TKOutline")) Then
  Set prof = CreateObject("TessarkAO.TKProfile")
  Check "a new profile is empty", prof.IsProfileEmpty
  Set outline = prof.AddOutline()
  Check "AddOutline appends", prof.NumberOfOutlines = 1
  Check "GetOutline hands out the same outline", prof.GetOutline(1) Is outline
End If

If Needs("remembered dialog positions", Array("TessarkAO.DialogUtils")) Then
  Set r = CreateObject("TessarkAO.DialogUtils")
  r.SetStartPosition 6, 1234, 567
  x = 0 : y = 0
  r.GetStartPosition 6, x, y
  Check "a dialog position written is read back whole", x = 1234 And y = 567
End If

Finish "session.vbs"
