#include "amend/contracts.h"
#include "automation/binding.h"
#include "browse/contracts.h"
#include "carriers/contracts.h"
#include "delivery/contracts.h"
#include "frame/contracts.h"
#include "picking/contracts.h"
#include "upload/contracts.h"
#include "warehouse/contracts.h"

namespace tessarlorn {

std::span<const Operation> GetOperations() {
  static constexpr std::array kOperations = {
      Bind<&clsGetData::TransMode>(),
      Bind<&clsGetData::GetListData>(),
      Bind<&clsGetData::GetEntryData>(),
      Bind<&clsGetData::GetTemplateData>(),
      Bind<&clsGetData::GetUserDefineFilterTemplate>(),
      Bind<&clsGetData::GetListBySQL>(),
      Bind<&clsGetData::ExecuteSQL>(),
      Bind<&clsGetData::GetWebShopData>(),
      Bind<&clsGetData::GetCommunicaInformation>(),
      Bind<&clsGetData::GetMobileInformation>(),
      Bind<&clsGetData::GetWebBillTitleData>(),
      Bind<&clsGetData::ExeP_WebBillTitleData>(),
      Bind<&clsGetData::bIsPickingGoods>(),
      Bind<&clsGetData::bIsPickByBatch>(),
      Bind<&clsGetData::lPickGoodsCount>(),
      Bind<&clsGetData::bExistStockPositionManager>(),
      Bind<&clsGetData::bExistBatchOrSerialManagerItem>(),
      Bind<&clsGetData::bExistBatchEmpty>(),
      Bind<&clsGetData::GetBatchNo>(),
      Bind<&clsGetData::GetSumRecordsetDataForDelivery>(),
      Bind<&clsGetData::GetPrintRecordsetForDelivery>(),
      Bind<&clsGetData::GetOverMaxPrintCountBillInfo>(),
      Bind<&clsGetData::GetWeightByFID>(),
      Bind<&clsGetData::NewGetWeightByFID>(),
      Bind<&clsGetData::GetTotalLogisticsCosts>(),
      Bind<&clsGetData::bIsWeightting>(),
      Bind<&clsGetData::bExistUpLoadBill>(),
      Bind<&clsGetData::GetUploadDataByFID>(),
      Bind<&clsGetData::GetUploadDataByTab>(),
      Bind<&clsGetData::isRunUploadOrder>(),
      Bind<&clsGetData::GetSplitChrildOrderIDs>(),
      Bind<&clsGetData::CheckWebShopTypeSameByOrders>(),
      Bind<&clsGetData::GetWebShopType>(),
      Bind<&clsGetData::bIsAddressReachable>(),
      Bind<&clsGetData::GetNeedAddressReachableInfo>(),
      Bind<&clsGetData::GetNoAddressReachableInfo>(),
      Bind<&clsGetData::GetTplCompany>(),
      Bind<&clsGetData::GetTplStock>(),
      Bind<&clsGetData::GetTplCompanyNew>(),
      Bind<&clsGetData::GetTplOrderInfo>(),
      Bind<&clsGetData::GetNotTplOrderInfo>(),
      Bind<&clsGetData::GetCancelTplOrderInfo>(),
      Bind<&clsGetData::GetCancelTplReturnOrderInfo>(),
      Bind<&clsGetData::GetFiltrationTPLOrder>(),
      Bind<&clsGetData::GetPurchaseTaskInfo>(),
      Bind<&clsGetData::bExistStock>(),
      Bind<&clsGetData::CheckInnerInvoice>(),
      Bind<&clsGetData::GetIsMarkBilling>(),
      Bind<&clsGetData::bExistInvoice>(),
      Bind<&clsGetData::GetWebFIDByCostInoviceID>(),
      Bind<&clsGetData::GetTotalPriceChange>(),
      Bind<&clsGetData::GetPrintRecordsetForPick>(),
      Bind<&clsGetData::CheckReturnBills>(),
      Bind<&clsGetData::CheckBillStatus>(),
      Bind<&clsGetData::CheckCloseBill>(),
      Bind<&clsGetData::CheckCloseBillOnly>(),
      Bind<&clsGetData::GetLogisticsCompany>(),
      Bind<&clsGetData::GetStartElectronicLogistics>(),
      Bind<&clsGetData::IsThermalPrinting>(),
      Bind<&clsGetData::GetJDCustomerCode>(),
      Bind<&clsGetData::GetBigAccountInfo>(),
      Bind<&clsGetData::GetOrderInfoByLogisticsOrder>(),
  };
  return kOperations;
}

}  // namespace tessarlorn
