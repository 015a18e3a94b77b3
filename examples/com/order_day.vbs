' The day of two orders, by a script: cscript //nologo order_day.vbs DATABASE
' DATABASE is a connection string, such as Embedded=C:\shop\orders.db, made by "tessarlorn init" and "tessarlorn seed".
Option Explicit

Dim dsn
If WScript.Arguments.Count = 1 Then
    dsn = "Connect={" & WScript.Arguments(0) & "};User=16394;Language=CHS;Client=10.0.0.5"
Else
    WScript.Echo "usage: cscript //nologo order_day.vbs DATABASE"
    WScript.Quit 2
End If

Dim reader, writer
Set reader = CreateObject("TessarLornPickingAndDelivery.clsGetData")
Set writer = CreateObject("TessarLornPickingAndDelivery.clsSaveData")

' The orders that wait for picking.
Dim filter, orders
Set filter = CreateObject("Mirel.Dictionary")
filter("FOrderStatus") = "2"
Set orders = reader.GetListData(dsn, filter)
WScript.Echo orders.RecordCount & " orders wait for picking"

Dim keys
keys = orders("FID")
orders.MoveNext
keys = keys & "," & orders("FID")
orders.Close

' A picker for both, then the picking check.
Dim parameters
Set parameters = CreateObject("Mirel.Dictionary")
parameters("sDSN") = dsn
parameters("FID") = keys
parameters("FPickManNumber") = "007"
parameters("FPickRem") = "fragile"
WScript.Echo "picked:    " & writer.ConfirmBill(parameters)
' The case of keys counts; this operation spells its own in its own way.
parameters("sDsn") = dsn
parameters("UserId") = 16394
WScript.Echo "checked:   " & writer.MarkPickingGoodsStatus(parameters)

' Waybill numbers and weights, one Dictionary an order.
Dim weights, entry, key
Set weights = CreateObject("Mirel.Vector")
For Each key In Split(keys, ",")
    Set entry = CreateObject("Mirel.Dictionary")
    entry("FID") = key
    entry("FLogisticsOrder") = "WB-" & key
    entry("FWeight") = 1.25
    entry("FLogisticsCost") = 8
    weights.Add entry
Next
WScript.Echo "weighed:   " & writer.SetUpLogisticsNumberAndWeight(dsn, weights)

WScript.Echo "delivered: " & writer.Delivery(parameters)
WScript.Echo "queued:    " & writer.UpdateDeliveryData(dsn, keys)
WScript.Echo "reported:  " & writer.UploadStatus(parameters)

' What the component raises arrives in Err. Here it is on purpose: the operation wants a Dictionary.
WScript.Echo "refused on purpose, as the operation wants a Dictionary and is given a text:"
On Error Resume Next
writer.Delivery "no dictionary"
WScript.Echo "error " & Err.Number & " from " & Err.Source & ": " & Err.Description
