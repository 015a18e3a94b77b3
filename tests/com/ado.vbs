' A database behind Wine's own ADO. It runs what changes orders; its recordsets have no rows and cannot be let go of
' their connection, its errors have no text, its commands take no parameters, so that nothing can be logged, and it opens
' no stream. What it did is asked for over ODBC.
Option Explicit
Dim session, reads, saves, chinese, order, answer
session = "Connect={" & WScript.Arguments(0) & "};User=16394;Client=10.0.0.5"
Set reads = CreateObject("TessarLornPickingAndDelivery.clsGetData")
Set saves = CreateObject("TessarLornPickingAndDelivery.clsSaveData")

Function Ask(sql)
  Dim found
  Set found = reads.ExecuteSQL(WScript.Arguments(1), sql)
  Ask = found(0).Value
End Function

Function Keys(name, value)
  Dim dictionary
  Set dictionary = CreateObject("Scripting.Dictionary")
  dictionary.Add "sDSN", session
  dictionary.Add "FID", order
  dictionary.Add name, value
  Set Keys = dictionary
End Function

Sub Failure()
  WScript.Echo Hex(Err.Number), Err.Source, Err.Description
  Err.Clear
End Sub

order = CStr(Ask("select min(FID) from IC_Web2ERPOrders where FOrderStatus = 6 and FID not in (select FID from IC_StockBillOrdersStatus)"))
chinese = Ask("select nchar(25918) + nchar(22312) + nchar(38376)")
WScript.Echo saves.Delivery(Keys("sDsn", session)) '= -1
WScript.Echo Ask("select FOrderStatus from IC_Web2ERPOrders where FID = " & order) '= 14
reads.ExecuteSQL session, "insert into t_SystemProfile (FCategory, FKey, FValue) values ('EC', 'Tried', N'" & chinese & "')"
WScript.Echo Ask("select FValue from t_SystemProfile where FKey = 'Tried'") = chinese '= -1

On Error Resume Next
saves.DeRemark Keys("FDeliveryRemark", chinese)
Failure '= 80004001 OrderRemark ADO: Command.CommandTimeout failed: Not implemented.
saves.UpdateAddressReachableState session, "first", 1
Failure '= 80004005 TessarLornPickingAndDelivery.clsSaveData.UpdateAddressReachableState ADO: Connection.Execute failed: Call failed.
reads.ExecuteSQL session, "selec 1"
Failure '= 80004005 TessarLorn ADO driver ADO: Connection.Execute failed: Call failed.
reads.ExecuteSQL Replace(session, "served", "nowhere"), "select 1"
Failure '= 80004005 TessarLorn ADO driver ADO: Connection.Open failed: Call failed.
WScript.Echo Ask("select FOrderStatus from IC_Web2ERPOrders where FID = " & order) '= 14
Set answer = reads.ExecuteSQL(WScript.Arguments(1), "select 1 as a").AsADO
Failure '= E7D TessarLorn ADO driver ADO: Recordset.Open failed: 0x800A0E7D
