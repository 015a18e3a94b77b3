' Objects made, called and let go 5,000 times; memory.py looks at the process after each thousand, while some more
' rounds keep it alive.
Option Explicit
Dim turn
Sub OneRound()
  Dim reads, saves, parameters, list, rs, field, text, turns
  Set reads = CreateObject("TessarLornPickingAndDelivery.clsGetData")
  Set saves = CreateObject("TessarLornPickingAndDelivery.clsSaveData")
  Set parameters = CreateObject("Mirel.Dictionary")
  Set list = CreateObject("Mirel.Vector")
  list.Add parameters
  parameters("sDSN") = WScript.Arguments(0)
  parameters("FID") = "2"
  parameters("FPickManNumber") = ""
  text = saves.ConfirmBill(parameters)
  Set rs = reads.GetEntryData(WScript.Arguments(0), parameters)
  For Each field In rs.Fields
    text = text & field.Name & field.Value
  Next
  text = list(1)("FID")
  For turns = 1 To 3
    text = text & rs("FID") & rs(0) & rs.Fields(1).Value & rs.Fields.Count
  Next
  text = rs.GetRows
  On Error Resume Next
  Set rs = reads.ExecuteSQL(WScript.Arguments(0), "select FNone")
End Sub
For turn = 1 To 5500
  OneRound
  If turn Mod 1000 = 0 Then
    WScript.Echo turn
  End If
Next
