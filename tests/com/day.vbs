' What a form of the ERP does with orders, late-bound: collections of both kinds, arrays, arguments that are written
' back, Chinese text, and what goes wrong. examples/com/order_day.vbs has the whole way of an order.
Option Explicit

Dim session, reads, saves, first, second, both, rs, answer, lines, line, kept, chinese, split, text
session = "Connect={" & Replace(WScript.Arguments(0), "}", "}}") & "};User=16394;Language=CHS;Client=10.0.0.5"
Set reads = CreateObject("TessarLornPickingAndDelivery.clsGetData")
Set saves = CreateObject("TessarLornPickingAndDelivery.clsSaveData")

Function Ask(sql)
  Dim found
  Set found = reads.ExecuteSQL(session, sql)
  Ask = Empty
  If Not found.EOF Then Ask = found(0).Value
End Function

Function Keys(fid, name, value)
  Dim dictionary
  Set dictionary = CreateObject("Scripting.Dictionary")
  dictionary.Add "sDSN", session
  dictionary.Add "FID", fid
  dictionary.Add name, value
  Set Keys = dictionary
End Function

first = Ask("select min(FID) from IC_Web2ERPOrders where FOrderStatus = 6 and FUpLoadStatus = 0")
second = Ask("select min(FID) from IC_Web2ERPOrders where FOrderStatus = 6 and FUpLoadStatus = 0 and FID > " & first)
both = first & "," & second
chinese = Ask("select nchar(25918) + nchar(22312) + nchar(38376)")

Set rs = reads.GetListData(session, Keys("", "WebOrderMaxDisplayCount", 8))
WScript.Echo rs.RecordCount, TypeName(rs("FOrderDate").Value), rs.Fields("FOrderType").Name '= 8 Date FOrderType
For Each line In reads.GetWebBillTitleData(session)
  text = text & line & " "
Next
WScript.Echo Trim(text) '= 2 6 14
WScript.Echo saves.DeRemark(Keys(first, "FDeliveryRemark", chinese)) '= -1
WScript.Echo Ask("select FDeliveryRemark from IC_Web2ERPOrders where FID = " & first) = chinese '= -1

' An array of dictionaries does as well as a vector.
Set kept = CreateObject("Scripting.Dictionary")
For Each line In Array("FLogisticsCost", "FWeighttingMan", "FWeighttingStatus")
  kept.Add line, 1
Next
kept.Add "FID", first
kept.Add "FWeight", reads.NewGetWeightByFID(session, first)("FWeight") + 0.125
WScript.Echo saves.SaveLogWeight(session, Array(kept)) '= -1
WScript.Echo Ask("select FWeight from IC_Web2ERPOrders where FID = " & first) = kept("FWeight") '= -1
Set lines = CreateObject("Mirel.Vector")
Set kept = CreateObject("Mirel.Dictionary")
kept("FailureFID") = second
kept("FailureInfo") = chinese
lines.Add kept
WScript.Echo saves.UploadStatusFailure(Keys("", "ErrInfo", lines)) '= -1
WScript.Echo Ask("select FReasonsForFailure from IC_Web2ERPOrders where FID = " & second) = chinese '= -1
WScript.Echo saves.Delivery(Keys(both, "UpdateFlag", True)), saves.BackToThePreviousStep(Keys(second, "UpdateFlag", True)) '= -1 -1
WScript.Echo Ask("select FOrderStatus from IC_Web2ERPOrders where FID = " & first), Ask("select FOrderStatus from IC_Web2ERPOrders where FID = " & second) '= 14 6
WScript.Echo Ask("select count(*) from IC_TradeLog where FUserIP = '10.0.0.5' and FOPUserID = 16394 and FOrderFID in (" & both & ")") '= 2

' Both arguments that are written back.
split = Ask("select min(o.FID) from IC_Web2ERPOrders o where o.FOrderStatus = 14 and exists (select 1 " & _
  "from IC_Web2ERPOrdersEntry e join IC_Web2ERPOrdersEntry p on p.FSiteOrderID = e.FSiteOrderID and p.FID <> e.FID " & _
  "join IC_Trade t on t.FTID = e.FSiteOrderID where e.FID = o.FID and e.FSiteOrderID <> '' and e.FChildOrderID <> '')")
answer = Empty
WScript.Echo reads.GetSplitChrildOrderIDs(session, split, _
  Ask("select min(FSiteOrderID) from IC_Web2ERPOrdersEntry where FSiteOrderID <> '' and FID = " & split), answer) '= -1
WScript.Echo TypeName(answer), Len(answer) > 0 '= String -1
answer = 0
WScript.Echo reads.CheckWebShopTypeSameByOrders(session, CStr(first), answer), TypeName(answer), answer > 0 '= -1 Integer -1

WScript.Echo reads.GetEntryData(session, Keys(0, "x", 1)) Is Nothing, saves.TransMode '= 0 2
On Error Resume Next
Set rs = reads.GetEntryData(session, Keys("first", "x", 1))
WScript.Echo Hex(Err.Number), Err.Source, Err.Description '= 80040E14 TessarLornPickingAndDelivery.clsGetData.GetEntryData Invalid column name 'first'.
Err.Clear
CreateObject("TessarLornPickingAndDelivery.clsSaveData").IsLogEnable "2"
WScript.Echo Err.Number, Err.Source, Err.Description '= 91 TessarLornPickingAndDelivery The data session is not open
