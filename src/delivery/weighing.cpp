// Weighing: storing weights, computing them from the order's lines, and the switch.
#include "delivery/contracts.h"
#include "delivery/stock_bill_queue.h"
#include "frame/order_call.h"
#include "frame/parameters.h"
#include "frame/text_builder.h"
#include "platform/text/text.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// The order's lines with the units of their quantities (t3) and weights (t4).
constexpr std::string_view kLinesWithUnits = R"(
      FROM      IC_Web2ERPOrdersEntry t1
                INNER JOIN t_ICItem t2 ON t1.FItemID = t2.FItemID
                INNER JOIN t_MeasureUnit t3 ON t2.FUnitID = t3.FMeasureUnitID
                INNER JOIN t_MeasureUnit t4 ON t2.FMaund = t4.FMeasureUnitID
      Where t1.FID = {FID}
)"_sql;

/// The line weight in kg of `weight` in the gross-weight unit, or in the item's own unit where the item names no gross
/// unit ("*"). Nothing when the unit is neither kilogram nor gram.
std::optional<double> KnownKilograms(double weight, const std::string& gross_unit, const std::string& item_unit) {
  const std::string& unit = gross_unit == "*" ? item_unit : gross_unit;
  const std::string upper = UpperCase(unit);
  if (upper == "KG" || unit == "千克") return weight;
  if (upper == "G" || unit == "克") return weight / 1000;
  return std::nullopt;
}

double Kilograms(const Recordset& line) {
  const Variant weight = line.Get("FWeight");
  if (weight.is_null()) return 0;
  const std::optional<double> known =
      KnownKilograms(weight.ToDouble(), line.Get("FGrossUnitName").ToText(), line.Get("FUnitName").ToText());
  if (known) return *known;
  const double coefficient = line.Get("FCoefficient").ToDouble();
  if (coefficient == 0) Raise(error_number::kDivisionByZero, "Division by zero");
  return weight.ToDouble() / coefficient;
}

}  // namespace

bool clsSaveData::SaveLogWeight(std::string_view sDsn, const Vector* vctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::SaveLogWeight>;
  if (vctPara == nullptr) return false;
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    TextBuilder text;
    for (const Variant& item : *vctPara) {
      const std::shared_ptr<Dictionary> order = ItemDictionary(item);
      const Parameters parcel(order.get());
      const std::string key = parcel.Text("FID");
      text.Line("UPDATE IC_Web2ERPOrders  SET FWeight = ", parcel.Text("FWeight"),
                ",FLogisticsCost = ", parcel.Text("FLogisticsCost"),
                ",FWeighttingMan = ", parcel.Text("FWeighttingMan"),
                ",FWeighttingStatus = ", parcel.Text("FWeighttingStatus"), " WHERE FID = ", key);
      if (IsLogEnable("3008")) WriteOPLog(key, "3008", "0", "", "");
    }
    if (!text.empty()) connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::UpdateLogisticsWeightStatus(std::string_view sDsn, const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::UpdateLogisticsWeightStatus>;
  const Parameters parameters(dctPara);
  if (!parameters.HasAllOf(contract.keys())) return false;
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    const std::string orders = parameters.Text("FID");
    const bool queued = parameters.Value("AsyncCreate").ToBool();
    TextBuilder text;
    text.Append(R"(
UPDATE IC_Web2ERPOrders
SET FWeighttingStatus = 1,FWeighttingMan = {user}
WHERE FID IN ({FID})
)"_sql,
                {{"user", parameters.Text("UserID")}, {"FID", orders}});
    connection.Execute(text.GetText());
    if (queued) QueueStockBills(connection, orders);
    return true;
  });
}

RecordsetPtr clsGetData::GetWeightByFID(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetWeightByFID>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    TextBuilder text;
    text.Append(R"(
      SELECT    t1.FID ,
                SUM(( t1.FQuantity / t3.FCoefficient ) * ( t2.FGrossWeight
                                                           / t4.FCoefficient )) AS FWeight
)"_sql);
    text.Append(kLinesWithUnits, {{"FID", call.orders}});
    text.Line("      GROUP BY  t1.FID ");
    return call.connection.ExecuteAnswer(text.GetText());
  });
}

std::optional<Dictionary> clsGetData::NewGetWeightByFID(std::string_view sDsn, std::int32_t sFID) {
  constexpr const Contract& contract = kContract<&clsGetData::NewGetWeightByFID>;
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    TextBuilder text;
    text.Append(R"(
      SELECT    t1.FID ,t3.FName as FUnitName,t4.FName as FGrossUnitName,t4.FCoefficient,
                SUM(( t1.FQuantity / t3.FCoefficient ) * ( t2.FGrossWeight
                                                            )) AS FWeight
)"_sql);
    text.Append(kLinesWithUnits, {{"FID", sFID}});
    text.Line("      GROUP BY  t1.FID,t3.FName,t4.FName,t4.FCoefficient ");
    double total = 0;
    const RecordsetPtr lines = connection.Query(text.GetText());
    for (; !lines->eof(); lines->MoveNext()) total += Kilograms(*lines);
    return std::optional<Dictionary>(Dictionary{{"FWeight", total}, {"FID", sFID}});
  });
}

bool clsGetData::bIsWeightting(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::bIsWeightting>;
  return ReadSwitch(contract, sDsn, "ECWeightting");
}

}  // namespace tessarlorn
