' The component's own collections, members and errors as a script sees them.
Option Explicit
Dim d, v, key, text
Sub Failure(what)
  WScript.Echo what, Err.Number, Err.Description
  Err.Clear
End Sub
Function Listed(values)
  Dim value
  For Each value In values
    Listed = Listed & value & ";"
  Next
End Function

Set d = CreateObject("Mirel.Dictionary")
d.CompareMode = 0
d("a") = 1
d.Item("B") = "two"
d.Add "x", Null
d.Key("x") = "c"
WScript.Echo d.Count, d("a"), Listed(d.Keys), UBound(d.Items), IsNull(d("c")), IsEmpty(d("none")), d.GetValue("none", "other") '= 3 1 a;B;c; 2 -1 -1 other
WScript.Echo Listed(d) '= a;B;c;

Set v = CreateObject("Mirel.Vector")
v.Add "x"
v.Add d
v.Add DateSerial(2026, 11, 21)
v(1) = "y"
Set d("own") = v
WScript.Echo v.Count, v(1), v.Item(2)("a"), TypeName(v(3)), d("own")(2).Count '= 3 y 1 Date 4
v(2).Add "later", 5
WScript.Echo d("later") '= 5
text = ""
For Each key In v
  text = text & TypeName(key) & ";"
Next
WScript.Echo text '= String;_Dictionary;Date;

On Error Resume Next
d.Add "a", 2
WScript.Echo Err.Source '= TessarLornPickingAndDelivery
Failure "again" '= again 457 This key is already associated with an element of this collection: a
v.Nonsense
Failure "unknown" '= unknown 438 Object doesn't support this property or method
d.CompareMode = 1
Failure "mode" '= mode 5 Invalid procedure call or argument: CompareMode of a Dictionary that has keys
d.Count = 3
Failure "read only" '= read only 438 Object doesn't support this property or method: Dictionary.Count

v.Clear
d.RemoveAll
WScript.Echo UBound(d.Keys), Listed(v) & "." '= -1 .
WScript.Echo TypeName(CreateObject("Mirel.Vector.1")), TypeName(CreateObject("TessarLornPickingAndDelivery.clsSaveData.1")) '= _Vector _clsSaveData
