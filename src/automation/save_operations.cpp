#include "amend/contracts.h"
#include "automation/binding.h"
#include "carriers/contracts.h"
#include "delivery/contracts.h"
#include "frame/contracts.h"
#include "picking/contracts.h"
#include "upload/contracts.h"
#include "warehouse/contracts.h"

namespace tessarlorn {

std::span<const Operation> SaveOperations() {
  static constexpr std::array kOperations = {
      Bind<&clsSaveData::TransMode>(),
      Bind<&clsSaveData::WriteSaveOrderLog>(),
      Bind<&clsSaveData::WriteOPLog>(),
      Bind<&clsSaveData::IsLogEnable>(),
      Bind<&clsSaveData::ConfirmBill>(),
      Bind<&clsSaveData::SavePickingGoods>(),
      Bind<&clsSaveData::MarkPickingGoodsStatus>(),
      Bind<&clsSaveData::ClearPickingGoodsStatus>(),
      Bind<&clsSaveData::SaveBatchNo>(),
      Bind<&clsSaveData::SavePrintSerialNumber>(),
      Bind<&clsSaveData::GetUniqueCodeIndex>(),
      Bind<&clsSaveData::Delivery>(),
      Bind<&clsSaveData::BackToThePreviousStep>(),
      Bind<&clsSaveData::UpdateDeliveryData>(),
      Bind<&clsSaveData::ModifyCost>(),
      Bind<&clsSaveData::SetUpLogisticsNumberAndWeight>(),
      Bind<&clsSaveData::SetUpLogisticsNumber>(),
      Bind<&clsSaveData::SaveLogWeight>(),
      Bind<&clsSaveData::UpdateLogisticsWeightStatus>(),
      Bind<&clsSaveData::UploadStatus>(),
      Bind<&clsSaveData::UploadStatusFailure>(),
      Bind<&clsSaveData::UpLoadStatusForManualAndClosed>(),
      Bind<&clsSaveData::UpdateAddressReachableState>(),
      Bind<&clsSaveData::SubMitTplOrderTask>(),
      Bind<&clsSaveData::SubMitPorTask>(),
      Bind<&clsSaveData::ClearTplFieldInfo>(),
      Bind<&clsSaveData::DownloadWebTpls>(),
      Bind<&clsSaveData::OrderRemark>(),
      Bind<&clsSaveData::DeRemark>(),
      Bind<&clsSaveData::DeliveryRemark>(),
      Bind<&clsSaveData::ChangeAddess>(),
      Bind<&clsSaveData::ChangeStock>(),
      Bind<&clsSaveData::UpdateCostInvoiceStatus>(),
      Bind<&clsSaveData::UpdateAfterDeleteBill>(),
      Bind<&clsSaveData::SetUpLogisticsCompany>(),
      Bind<&clsSaveData::UpdateEMSOrderStatus>(),
      Bind<&clsSaveData::SetSFPackageQuantity>(),
      Bind<&clsSaveData::WriteInsuredAmount>(),
      Bind<&clsSaveData::WriteJzservice>(),
  };
  return kOperations;
}

}  // namespace tessarlorn
