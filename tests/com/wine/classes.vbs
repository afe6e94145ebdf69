' Every class of the catalogue by ProgID: a served class is created and
' answers as itself; a class this build does not serve is not registered.
' The runner puts harness.vbs in front of this script.

Dim names, name, o, number
names = Array("SceneUtils", "TKTreeView", "TKSurfaceFinish", "AppUtils", "DialogUtils", "TKPosition", _
  "TKSMFormingShape", "TKSMBendShape", "TKOutline", "TK2DArray", "TKProfile", "TKInvoluteCurve", "TKExports", _
  "TKExtrudeShape", "TKSMExtrudeShape", "TKImports", "Localizer", "TKColumnSet", "TKCurve", "TKColumn", _
  "TK2DProjectedThreads", "TKMatrix4d", "TKTransform", "TKVector4d", "TKShape", "UnitUtils", "TK2DLine", _
  "TKSystemUtils", "TKTreeNode", "TKSMCurvedStockShape", "TKSMConicShape")
Check "the catalogue has 31 classes", UBound(names) = 30

On Error Resume Next
For Each name In names
  Set o = Nothing
  Set o = CreateObject("TessarkAO." & name)
  number = Err.Number
  Err.Clear
  If IsServed("TessarkAO." & name) Then
    Check "CreateObject TessarkAO." & name, number = 0 And IsObject(o)
    If number = 0 Then Check "TypeName of TessarkAO." & name, InStr(TypeName(o), name) > 0
  Else
    Check "TessarkAO." & name & " is not registered by this build", number = 429
  End If
Next
Set o = Nothing
Set o = CreateObject("TessarkAO.NoSuchClass")
Check "an unknown ProgID is error 429", Err.Number = 429
Err.Clear
On Error GoTo 0

Finish "classes.vbs"
