// How picking is configured.
#include "frame/call_frame.h"
#include "picking/contracts.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {

bool clsGetData::bIsPickingGoods(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::bIsPickingGoods>;
  return ReadSwitch(contract, sDsn, "ECPickingGoods");
}

bool clsGetData::bIsPickByBatch(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::bIsPickByBatch>;
  return ReadSwitch(contract, sDsn, "PickByBatch");
}

std::int32_t clsGetData::lPickGoodsCount(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::lPickGoodsCount>;
  constexpr std::int32_t kUsualCount = 20;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection& connection) {
    const RecordsetPtr setting =
        connection.Query("select FValue  from t_SystemProfile where FKey ='PickGoodsCount' \r\n");
    const Variant count = setting->Get("FValue");
    return IsNumeric(count) ? count.ToInt32() : kUsualCount;
  });
}

}  // namespace tessarlorn
