// JScript's own arrays and objects as the collections that operations take.
var session = "Connect={" + WScript.Arguments(0) + "};User=16394";
var reads = new ActiveXObject("TessarLornPickingAndDelivery.clsGetData");
var saves = new ActiveXObject("TessarLornPickingAndDelivery.clsSaveData");
function ask(sql) {
  return reads.ExecuteSQL(session, sql)(0).Value;
}
function failure(call) {
  try {
    return call();
  } catch (error) {
    return (error.number & 0xffff) + " " + error.description;
  }
}

var first = ask("select min(FID) from IC_Web2ERPOrders where FOrderStatus = 6");
WScript.Echo(reads.GetListData(session, {WebOrderMaxDisplayCount: 3, FOrderStatus: "6", FOrderDateFrom: new Date(2020, 0, 31)}).RecordCount); //'= 3
var weights = [{FID: first, FLogisticsOrder: "JS-1", FWeight: "1.25"}, {FID: first + 1, FWeight: new Number(2.5)}];
WScript.Echo(saves.SetUpLogisticsNumberAndWeight(session, weights)); //'= -1
WScript.Echo(ask("select FLogisticsOrder + '/' + ltrim(str(FWeight, 9, 2)) from IC_Web2ERPOrders where FID = " + first)); //'= JS-1/1.25
var kept = new ActiveXObject("Mirel.Dictionary");
kept.Add("sDSN", session);
kept.Add("FID", [first][0]);
kept.Item("FDeliveryRemark") = new String("gate 3");
kept.Item("unread") = [1, 2];
WScript.Echo(kept.Item("unread").length); //'= 2
WScript.Echo(saves.DeRemark(kept), ask("select FDeliveryRemark from IC_Web2ERPOrders where FID = " + first)); //'= -1 gate 3

// A dictionary that finds its keys in any case may hold them in one that operations do not find.
var any = new ActiveXObject("Scripting.Dictionary");
any.CompareMode = 1;
any.Add("sDSN", session);
any.Add("fid", first);
WScript.Echo(failure(function () { return reads.bExistStock(any); })); //'= 5 dctPara: the key is "FID", not "fid": operations tell upper from lower case
WScript.Echo(failure(function () { return saves.SetUpLogisticsNumberAndWeight(session, [any]); }).substr(0, 35)); //'= 5 vctPara: the key is "FID", not "f
