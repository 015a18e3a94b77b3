#include "hosts/cli/operation_examples.h"

#include <array>

namespace tessarlorn::cli {
namespace {

constexpr std::array kBrowse = std::to_array<OperationExample>({
    {"GetListData", "Filter.FOrderStatus=2 Filter.WebOrderMaxDisplayCount=5 --columns FID,FOrderID,FConsignee"},
    {"GetEntryData", "dctParameters.FID=42 --columns FIndex,FNumber,FItemName,FQuantity"},
    {"GetTemplateData", "--columns FPage,FCaption,FFieldName"},
    {"GetUserDefineFilterTemplate", "--columns FCaption,FKey,FTableName"},
    {"GetListBySQL", "sFKey=1014301_FStockID"},
    {"ExecuteSQL", "StrSql=\"select FKey, FValue from t_SystemProfile where FKey = 'AddressReachable'\""},
    {"GetWebShopData", ""},
    {"GetCommunicaInformation", "dctPara.FID=42"},
    {"GetMobileInformation", "dctPara.FID=42,47"},
    {"ExeP_WebBillTitleData", ""},
    {"GetWebBillTitleData", ""},
});

constexpr std::array kPicking = std::to_array<OperationExample>({
    {"bIsPickingGoods", ""},
    {"bIsPickByBatch", ""},
    {"lPickGoodsCount", ""},
    {"ConfirmBill", "dctPara.FID=42,47 dctPara.FPickManNumber=E1001 dctPara.FPickRem=fragile"},
    {"SavePickingGoods",
     "dctPara.FLogisticsOrder=20260622103000000043777 dctPara.FPickingGoodsStatus=1 dctPara.FPickingGoodMan=16394"},
    {"MarkPickingGoodsStatus", "dctPara.FID=44,50 dctPara.UserId=16394"},
    {"ClearPickingGoodsStatus", "dctPara.FID=44 dctPara.UserId=16394"},
    {"bExistStockPositionManager", "dctPara.FID=3,4"},
    {"bExistBatchOrSerialManagerItem", "dctPara.FID=3,4"},
    {"bExistBatchEmpty", "dctPara.FID=1"},
    {"SaveBatchNo", R"('vctPara=[{"FEntryID":10,"FBatchNo":"L2026-11","FStockID":205,"SPID":1}]')"},
    {"GetBatchNo", "dctPara.FID=3 --columns FEntryID,FNumber,FItemName,FBatchNo"},
    {"SavePrintSerialNumber", R"('vctOrderInfo=[{"FID":44},{"FID":43}]')"},
    {"GetUniqueCodeIndex", "dctParam.FID=42,43,44"},
    {"GetPrintRecordsetForPick",
     "dctParam.FID=42,43 --columns FStockName,FSPNumber,FNumber,FItemName,FQuantity,FOrderID"},
});

constexpr std::array kDelivery = std::to_array<OperationExample>({
    {"bIsWeightting", ""},
    {"GetPrintRecordsetForDelivery", "dctParam.FID=43 --columns FConsignee,FName,FQuantity"},
    {"GetSumRecordsetDataForDelivery", "dctParam.FID=43"},
    {"GetOverMaxPrintCountBillInfo", "dctPara.FID=1,2 dctPara.PrintID=10143012"},
    {"GetWeightByFID", "dctPara.FID=43"},
    {"NewGetWeightByFID", "sFID=43"},
    {"SaveLogWeight",
     R"('vctPara=[{"FID":43,"FWeight":1.25,"FLogisticsCost":8,"FWeighttingMan":16394,"FWeighttingStatus":1}]')"},
    {"UpdateLogisticsWeightStatus", "dctPara.FID=43,44 dctPara.UserID=16394 dctPara.AsyncCreate=True"},
    {"SetUpLogisticsNumber", "dctPara.20260623102000000044=QL1000000001"},
    {"SetUpLogisticsNumberAndWeight",
     R"('vctPara=[{"FID":43,"FLogisticsOrder":"QL1000000002","FWeight":1.25,"FLogisticsCost":12}]')"},
    {"ModifyCost", "dctPara.FID=43,44 dctPara.LogisticsCosts=9.5"},
    {"GetTotalLogisticsCosts", "dctPara.FID=43,44"},
    {"CheckBillStatus", "dctPara.FID=42,43,44,45 dctPara.FOrderStatus=6"},
    {"CheckReturnBills", "dctPara.FID=10,39,42"},
    {"CheckCloseBill", "dctPara.FID=39,42,44,45"},
    {"CheckCloseBillOnly", "dctPara.FID=39,42,44,45"},
    {"Delivery", "dctPara.FID=43,44"},
    {"UpdateDeliveryData", "sFID=43,44"},
    {"BackToThePreviousStep", "dctPara.FID=44 dctPara.UpdateFlag=True"},
});

constexpr std::array kCarriers = std::to_array<OperationExample>({
    {"bIsAddressReachable", ""},
    {"GetNeedAddressReachableInfo", "sFID=45,48"},
    {"UpdateAddressReachableState", "sFID=45,48 lType=1"},
    {"GetNoAddressReachableInfo", "sFID=31,42"},
    {"GetLogisticsCompany", "dctPara.FID=31"},
    {"SetUpLogisticsCompany", "dctPara.FID=42,43 dctPara.FLogisticsID=302"},
    {"GetStartElectronicLogistics", "dctPara.FWebShopID=101"},
    {"GetBigAccountInfo", "dctPara.FLogisticsID=301 dctPara.FWebShopID=101"},
    {"GetJDCustomerCode", "dctPara.FWebShopID=102"},
    {"IsThermalPrinting", ""},
    {"SetSFPackageQuantity", "dctPara.FID=43 dctPara.FParcelQuantity=2"},
    {"WriteInsuredAmount", "dctPara.FID=43 dctPara.FInsuredValue=199.5"},
    {"WriteJzservice", "dctPara.FID=43 dctPara.FJzService=JZ01,JZ03"},
    {"UpdateEMSOrderStatus", "dctPara.FID=43 dctPara.FEMSStatus=2 dctPara.FLogisticsOrder=QL1000000003"},
    {"GetOrderInfoByLogisticsOrder", "dctPara.FLogisticsOrder=QL1000000003"},
});

constexpr std::array kUpload = std::to_array<OperationExample>({
    {"bExistUpLoadBill", "dctPara.FID=1,12"},
    {"isRunUploadOrder", ""},
    {"GetWebShopType", "sFWebshopID=101"},
    {"CheckWebShopTypeSameByOrders", "strIDs=11,12"},
    {"GetUploadDataByFID", "strFids=12,14"},
    {"GetUploadDataByTab", "pageTable='UploadPage pageTable' strFids=UploadRun strTempTable=UploadRows sNewID=U-1",
     "tessarlorn sql 'create table UploadRun (fid int, fstatus int) insert into UploadRun values (12, 0), (14, 0)\n"
     "  create table UploadPage (fid int, fstatus int) insert into UploadPage values (12, 0)\n"
     "  select top 0 * into UploadRows from IC_UploadWebOrderIndicator'"},
    {"GetSplitChrildOrderIDs", "FID=11 SiteOrderID=384492400000001105"},
    {"UploadStatus", "dctPara.FID=12"},
    {"UploadStatusFailure", R"('dctPara.ErrInfo=[{"FailureFID":14,"FailureInfo":"unknown waybill"}]')"},
    {"UpLoadStatusForManualAndClosed", ""},
});

constexpr std::array kWarehouse = std::to_array<OperationExample>({
    {"DownloadWebTpls", "lScheme=1"},
    {"GetTplCompany", ""},
    {"GetTplCompanyNew", ""},
    {"GetTplStock", "dctPara.FWebtplType=1 bIsBad=False"},
    {"GetTplOrderInfo", "sFID=23,45 dicWebToStorage.FStockID=204"},
    {"GetNotTplOrderInfo", "sFID=42,45"},
    {"GetFiltrationTPLOrder", "sFID=42,45"},
    {"SubMitTplOrderTask", "sFID=45 tplType=1 sUserName=demo sWebTplID=WH-E1"},
    {"GetCancelTplOrderInfo", "sFID=45 tplType=0 tplStockID="},
    {"GetCancelTplReturnOrderInfo", "sFID=113 tplType=1 tplStockID=WH-E1"},
    {"SubMitPorTask",
     "sTaskID=T-1 sInterFID=1 tplType=1 sStockID=204 sUserName=demo sFiter='t1.FInterID in (1)' lTranType=71"},
    {"GetPurchaseTaskInfo", "taskName= taskID=CG-20260612-0004 sWebTplType= sWebTplID="},
    {"ClearTplFieldInfo", "sBillNo=CG260612004"},
});

constexpr std::array kAmend = std::to_array<OperationExample>({
    {"OrderRemark", "dctPara.FID=42 dctPara.FSellerMessage='call first' dctPara.Mode=1"},
    {"DeRemark", "dctPara.FID=42 dctPara.FDeliveryRemark='at the weekend'"},
    {"DeliveryRemark", "dctPara.FID=43 dctPara.FShippingRem='with the doorman'"},
    {"ChangeAddess",
     "dctPara.FID=42 dctPara.FConsignee=Wang dctPara.FZipCode=518000 dctPara.FTelephone= "
     "dctPara.FMobile=13800000000 dctPara.FDeliveryProvince=0 dctPara.FDeliveryCity=0 dctPara.FDeliveryDistrict=0 "
     "dctPara.FDeliveryAddress='People Road 1'"},
    {"ChangeStock", "dctPara.FID=42 dctPara.FStockID=202"},
    {"bExistStock", "dctPara.FID=42"},
    {"GetIsMarkBilling", ""},
    {"bExistInvoice", "dctPara.FID=16"},
    {"CheckInnerInvoice", "dctPara.FID=15,16"},
    {"UpdateCostInvoiceStatus", "dctPara.FID=43 dctPara.FCostInvoiceInterID=2"},
    {"GetWebFIDByCostInoviceID", "lInoviceID=2"},
    {"UpdateAfterDeleteBill", "sFID=2"},
    {"GetTotalPriceChange", "sFIDs=5,21"},
});

constexpr std::array kLog = std::to_array<OperationExample>({
    {.operation = "WriteOPLog", .words = "", .by_command = false},
    {.operation = "WriteSaveOrderLog", .words = "", .by_command = false},
    {.operation = "IsLogEnable", .words = "", .by_command = false},
    {"clsSaveData.TransMode", ""},
    {"clsGetData.TransMode", ""},
});

constexpr std::array<OperationTask, 8> kTasks = {{
    {"Browse", "What the order list shows, and what its filters and columns are made from.", kBrowse},
    {"Picking", "Picker, picking check, batches and the numbers of a print run.", kPicking},
    {"Weighing and delivery", "Printing, weighing, waybills, costs, delivery, and the way back.", kDelivery},
    {"Carriers and addresses", "Whether a carrier reaches an address.", kCarriers},
    {"Upload to web shops", "What the web shops are told.", kUpload},
    {"Outside warehouses", "Orders that an outside warehouse fulfils.", kWarehouse},
    {"Changes and invoices", "Remarks, addresses, warehouses and invoices of orders.", kAmend},
    {"Log",
     "Who did what. The three operations of the log use the session that an earlier operation of the same object "
     "opened. The command makes a new object for each call, so it cannot call them.",
     kLog},
}};

}  // namespace

std::span<const OperationTask> OperationTasks() { return kTasks; }

}  // namespace tessarlorn::cli
