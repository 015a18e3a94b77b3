' Four orders through their day, as a form of the ERP calls it: late-bound.
Option Explicit
Dim session, reads, saves, first, second, third, manual, all, picker, text, rs, answer, lines, line, kept, chinese, split
session = "Connect={" & Replace(WScript.Arguments(0), "}", "}}") & "};User=16394;Language=CHS;Client=10.0.0.5"
Set reads = CreateObject("TessarLornPickingAndDelivery.clsGetData")
Set saves = CreateObject("TessarLornPickingAndDelivery.clsSaveData")

Function Ask(sql)
  Dim found
  Set found = reads.ExecuteSQL(session, sql)
  Ask = Empty
  If Not found.EOF Then Ask = found(0).Value
End Function

' Keys and values in turns, with the connection string first.
Function Keys(names, v1, v2, v3, v4)
  Dim dictionary, name, position
  Set dictionary = CreateObject("Scripting.Dictionary")
  dictionary.Add "sDSN", session
  dictionary.Add "sDsn", session
  dictionary.Add "sProps", session
  For Each name In names
    position = position + 1
    If position = 1 Then dictionary.Add name, v1
    If position = 2 Then dictionary.Add name, v2
    If position = 3 Then dictionary.Add name, v3
    If position = 4 Then dictionary.Add name, v4
  Next
  Set Keys = dictionary
End Function

Function Orders(fid)
  Set Orders = Keys(Array("FID"), fid, 0, 0, 0)
End Function

Function Untouched(condition)
  Untouched = Ask("select min(o.FID) from IC_Web2ERPOrders o left join IC_Web2ERPOrdersEx x on x.FID = o.FID " & _
    "where o.FOrderStatus = 2 and isnull(x.FIsLock, 0) = 0 and o.FUpLoadStatus = 0 and o.FWeighttingStatus = 0 " & _
    "and o.FPIckingGoodsStatus = 0 and o.FUniqueCode > 0 and o.FID not in (select FID from IC_StockBillOrdersStatus) " & _
    "and o.FOrderType " & condition)
End Function

Function CountOf(condition)
  CountOf = Ask("select count(*) from IC_Web2ERPOrders where FID in (" & all & ") and " & condition)
End Function

first = Untouched("<> 38112")
second = Untouched("<> 38112 and o.FID > " & first)
third = Untouched("<> 38112 and o.FID > " & second)
manual = Untouched("= 38112")
all = first & "," & second & "," & third & "," & manual
picker = Ask("select min(FNumber) from t_Emp")
chinese = Ask("select nchar(25918) + nchar(22312) + nchar(38376)")
WScript.Echo CountOf("FOrderStatus = 2"), Len(chinese) '= 4 3

' The list and one of its orders.
Set rs = reads.GetListData(session, Keys(Array("FOrderStatus", "WebOrderMaxDisplayCount"), 2, 8, 0, 0))
WScript.Echo rs.RecordCount, TypeName(rs("FOrderDate").Value), rs.Fields("FOrderType").Name '= 8 Date FOrderType
WScript.Echo reads.GetEntryData(session, Orders(first)).RecordCount = _
  Ask("select count(*) from IC_Web2ERPOrdersEntry where FID = " & first) '= -1
For Each line In reads.GetWebBillTitleData(session)
  text = text & line & " "
Next
WScript.Echo Trim(text) '= 2 6 14

' Addresses and remarks.
WScript.Echo saves.UpdateAddressReachableState(session, all, 1) '= -1
WScript.Echo saves.DeRemark(Keys(Array("FID", "FDeliveryRemark"), first, chinese, 0, 0)) '= -1
WScript.Echo Ask("select FDeliveryRemark from IC_Web2ERPOrders where FID = " & first) = chinese '= -1
WScript.Echo saves.ChangeStock(Keys(Array("FID", "FStockID"), third, 202, 0, 0)) '= -1
WScript.Echo Ask("select count(*) from IC_Web2ERPOrdersEntry where FStockID <> 202 and FID = " & third) '= 0

' Picking, checking, printing.
WScript.Echo saves.ConfirmBill(Keys(Array("FID", "FPickManNumber", "FPickRem"), all, picker, "round 1", 0)) '= -1
WScript.Echo CountOf("FOrderStatus = 6 and FPickRem = 'round 1' and FPickMan <> '0'") '= 4
WScript.Echo saves.SavePickingGoods(Keys(Array("FLogisticsOrder", "FPickingGoodsStatus", "FPickingGoodMan", _
  "FPickingGoodsstatus"), CStr(Ask("select FUniqueCode from IC_Web2ERPOrders where FID = " & first)), 1, 16394, 1)) '= -1
WScript.Echo saves.MarkPickingGoodsStatus(Keys(Array("FID", "UserId"), second & "," & third, 16394, 0, 0)) '= -1
WScript.Echo CountOf("FPIckingGoodsStatus = 1") '= 3
Set lines = CreateObject("Mirel.Vector")
For Each line In Array(third, first, second)
  Set kept = CreateObject("Mirel.Dictionary")
  kept("FID") = line
  lines.Add kept
Next
WScript.Echo saves.SavePrintSerialNumber(session, lines) '= -1
WScript.Echo Ask("select FSerialNumber from IC_Web2ERPOrdersEx where FID = " & third), _
  Ask("select FSerialNumber from IC_Web2ERPOrdersEx where FID = " & second) '= 1 3
WScript.Echo reads.GetPrintRecordsetForDelivery(Orders(first)).Fields.Count '= 21

' Weighing: an array of dictionaries does as well as a vector.
Set kept = CreateObject("Scripting.Dictionary")
For Each line In Array("FLogisticsCost", "FWeighttingMan", "FWeighttingStatus")
  kept.Add line, 1
Next
kept.Add "FID", first
kept.Add "FWeight", reads.NewGetWeightByFID(session, first)("FWeight") + 0.125
WScript.Echo saves.SaveLogWeight(session, Array(kept)) '= -1
WScript.Echo Ask("select FWeight from IC_Web2ERPOrders where FID = " & first) = kept("FWeight") '= -1
WScript.Echo saves.UpdateLogisticsWeightStatus(session, Keys(Array("FID", "UserID", "AsyncCreate"), all, 16394, True, 0)) '= -1
WScript.Echo CountOf("FWeighttingStatus = 1") '= 4

' Waybill and cost, delivery, one step back and forth.
Set kept = CreateObject("Mirel.Dictionary")
kept("FID") = third
kept("FLogisticsOrder") = "QL1000000001"
kept("FWeight") = "1.5 kg"
kept("FLogisticsCost") = "18.5"
lines.Clear
lines.Add kept
WScript.Echo saves.SetUpLogisticsNumberAndWeight(session, lines) '= -1
WScript.Echo saves.ModifyCost(Keys(Array("FID", "LogisticsCosts"), first & "," & second, 9.5, 0, 0)) '= -1
WScript.Echo reads.GetTotalLogisticsCosts(Orders(third)), TypeName(reads.GetTotalLogisticsCosts(Orders(all))) '= 18.5 Double
WScript.Echo saves.Delivery(Orders(all)), CountOf("FOrderStatus = 14") '= -1 4
WScript.Echo saves.BackToThePreviousStep(Keys(Array("FID", "UpdateFlag"), second, True, 0, 0)), CountOf("FOrderStatus = 6") '= -1 1
WScript.Echo saves.Delivery(Orders(second)), CountOf("FOrderStatus = 14") '= -1 4
WScript.Echo saves.DeliveryRemark(Orders(first)) '= 0

' What the web shops are told; both arguments that are written back.
split = Ask("select min(o.FID) from IC_Web2ERPOrders o where o.FOrderStatus = 14 and exists (select 1 " & _
  "from IC_Web2ERPOrdersEntry e join IC_Web2ERPOrdersEntry p on p.FSiteOrderID = e.FSiteOrderID and p.FID <> e.FID " & _
  "join IC_Trade t on t.FTID = e.FSiteOrderID where e.FID = o.FID and e.FSiteOrderID <> '' and e.FChildOrderID <> '')")
answer = Empty
WScript.Echo reads.GetSplitChrildOrderIDs(session, split, _
  Ask("select min(FSiteOrderID) from IC_Web2ERPOrdersEntry where FSiteOrderID <> '' and FID = " & split), answer) '= -1
WScript.Echo TypeName(answer), Len(answer) > 0 '= String -1
answer = 0
WScript.Echo reads.CheckWebShopTypeSameByOrders(session, CStr(first), answer), TypeName(answer) '= -1 Integer
WScript.Echo answer = Ask("select distinct s.FWebShopType from IC_WebshopToStorage s join IC_Web2ERPOrders o " & _
  "on o.FWebShopID = s.FWebShopID where o.FID = " & first) '= -1
WScript.Echo saves.UploadStatus(Orders(first & "," & second)), CountOf("FUpLoadStatus = 1") '= -1 2
Set kept = CreateObject("Scripting.Dictionary")
kept.Add "FailureFID", third
kept.Add "FailureInfo", chinese
lines.Clear
lines.Add kept
WScript.Echo saves.UploadStatusFailure(Keys(Array("ErrInfo"), lines, 0, 0, 0)) '= -1
WScript.Echo Ask("select FReasonsForFailure from IC_Web2ERPOrders where FID = " & third) = chinese '= -1
WScript.Echo CountOf("FReasonsForFailure <> ''") '= 1

' Who did what, and what goes wrong.
WScript.Echo Ask("select count(*) from IC_TradeLog where FUserIP = '10.0.0.5' and FOPUserID = 16394 and FOrderFID in (" & all & ")") '= 6
WScript.Echo reads.GetEntryData(session, Orders(0)) Is Nothing, saves.TransMode '= 0 2
On Error Resume Next
Set rs = reads.GetEntryData(session, Orders("first"))
WScript.Echo Hex(Err.Number), Err.Source, Err.Description '= 80040E14 TessarLornPickingAndDelivery.clsGetData.GetEntryData Invalid column name 'first'.
Err.Clear
CreateObject("TessarLornPickingAndDelivery.clsSaveData").IsLogEnable "2"
WScript.Echo Err.Number, Err.Source, Err.Description '= 91 TessarLornPickingAndDelivery The data session is not open
