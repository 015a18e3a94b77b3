// How picking is configured.
#include "frame/clsGetData.h"

namespace tessarlorn {

bool clsGetData::bIsPickingGoods(std::string_view sDsn) {
  return ReadSwitch("bIsPickingGoods", sDsn, "ECPickingGoods");
}

bool clsGetData::bIsPickByBatch(std::string_view sDsn) { return ReadSwitch("bIsPickByBatch", sDsn, "PickByBatch"); }

std::int32_t clsGetData::lPickGoodsCount(std::string_view sDsn) {
  constexpr std::int32_t kUsualCount = 20;
  if (sDsn.empty()) return 0;
  return CallOperation(State(), "lPickGoodsCount", sDsn, [&](Connection& connection) {
    const RecordsetPtr setting =
        connection.Query("select FValue  from t_SystemProfile where FKey ='PickGoodsCount' \r\n");
    const Variant count = setting->Get("FValue");
    return IsNumeric(count) ? count.ToInt32() : kUsualCount;
  });
}

}  // namespace tessarlorn
