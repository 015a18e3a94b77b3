// The waybill of an order, and what the carrier is told with it: parcels, insured amount, services.
#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "carriers/contracts.h"
#include "frame/identity.h"
#include "frame/key_list.h"
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "platform/text/text.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// States of the electronic waybill: 0 none, 1 asked for, 2 given, 3 printed, 4 cancelled.
constexpr std::int32_t kPrinted = 3;
constexpr std::int32_t kLastState = 4;

/// The key as a number from `least` to `most`.
std::int32_t NumberBetween(const Parameters& parameters, std::string_view key, std::int32_t least, std::int32_t most) {
  const std::int32_t number = parameters.Number(key);
  if (number < least || number > most) {
    RaiseInvalidArgument(std::string(key) + " " + std::to_string(number) + " is not from " + std::to_string(least) +
                         " to " + std::to_string(most));
  }
  return number;
}

/// Stores a value in the header extension of the orders; those without one get one.
/// @param value as it stands in SQL, a text with its quotes
bool StoreInExtension(const OrderCall& call, std::string_view column, std::string_view value) {
  TextBuilder text;
  text.Append(R"(
UPDATE  IC_Web2ERPOrdersEx
SET     {column} = {value}
WHERE   FID IN ( {FID})
INSERT INTO IC_Web2ERPOrdersEx(FID ,FOrderID,FLotNumber,FSerialNumber,FCreateDate,{column})
SELECT  t1.FID ,t1.FOrderID,'','',GETDATE(),{value}
FROM    IC_Web2ERPOrders t1 with(nolock)
WHERE   t1.FID IN ( {FID}) AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEx t2 WHERE t1.FID = t2.FID)
)"_sql,
              {{"column", column}, {"value", value}, {"FID", call.orders}});
  call.connection.Execute(text.GetText());
  return true;
}

/// Those codes of the list that the table of services has, as the table writes them and each once. Raises 5 naming the
/// others.
std::string KnownServices(Connection& connection, std::string_view list) {
  const RecordsetPtr services = connection.Query("SELECT FCode FROM IC_JzService with(nolock)\r\n");
  std::vector<std::string> codes;
  std::set<std::string> unknown;
  for (const std::string_view element : SplitKeys(list)) {
    const std::string_view code = Trim(element);
    services->MoveFirst();
    while (!services->eof() && !EqualsIgnoreCase(services->Get("FCode").ToText(), code)) services->MoveNext();
    if (services->eof()) {
      unknown.emplace(code);
      continue;
    }
    std::string known = services->Get("FCode").ToText();
    if (std::find(codes.begin(), codes.end(), known) == codes.end()) codes.push_back(std::move(known));
  }
  if (!unknown.empty()) RaiseInvalidArgument("there is no service " + JoinList(unknown));
  return JoinList(codes);
}

/// A number of that many digits at most can be a unique code.
bool MayBeUniqueCode(std::string_view text) {
  constexpr std::size_t kMostDigits = 23;
  return !text.empty() && text.size() <= kMostDigits && text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace

std::optional<Dictionary> clsGetData::GetOrderInfoByLogisticsOrder(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetOrderInfoByLogisticsOrder>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    const std::string parcel = parameters.Text("FLogisticsOrder");
    TextBuilder condition;
    if (MayBeUniqueCode(parcel)) condition.Append("FUniqueCode ='{parcel}' OR ", {{"parcel", parcel}});
    condition.Append("FLogisticsOrder ='{parcel}'", {{"parcel", parcel}});
    TextBuilder text;
    text.Append(R"(
SELECT  TOP 1 t1.FID ,
        t1.FOrderID ,
        t1.FOrderStatus ,
        t1.FLogisticsID ,
        ISNULL(t2.{name}, '') AS FLogisticsName ,
        t1.FConsignee ,
        t1.FWeight ,
        t1.FPIckingGoodsStatus ,
        t1.FWeighttingStatus ,
        ISNULL(t3.FParcelQuantity, 1) AS FParcelQuantity ,
        (SELECT COUNT(1) FROM IC_Web2ERPOrders with(nolock) WHERE {condition}) AS Count
FROM    IC_Web2ERPOrders t1 with(nolock)
        LEFT JOIN IC_Logistics t2 with(nolock) ON t1.FLogisticsID = t2.FItemID
        LEFT JOIN IC_Web2ERPOrdersEx t3 with(nolock) ON t1.FID = t3.FID
WHERE   {condition}
ORDER BY CASE WHEN t1.FOrderStatus = 14 THEN 1 ELSE 0 END, t1.FOrderDate DESC, t1.FID DESC
)"_sql,
                {{"name", NameColumn(context_)}, {"condition", condition.GetText()}});
    return FirstRow(connection.Query(text.GetText()), contract.columns);
  });
}

bool clsSaveData::UpdateEMSOrderStatus(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::UpdateEMSOrderStatus>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    const std::int32_t state = NumberBetween(call.parameters, "FEMSStatus", 0, kLastState);
    const std::string number = call.parameters.Text("FLogisticsOrder");
    if (!number.empty()) {
      const std::size_t orders = SplitKeys(call.orders).size();
      if (orders != 1) RaiseInvalidArgument("one FLogisticsOrder for " + std::to_string(orders) + " orders");
      WriteSaveOrderLog(call.orders, "0", "FLogisticsOrder", number);
    }
    TextBuilder text;
    text.Line("UPDATE IC_Web2ERPOrders");
    text.Append("SET     FEMSStatus = {state}", {{"state", state}});
    if (!number.empty()) text.Append(",FLogisticsOrder ='{number}'", {{"number", number}});
    if (state == kPrinted) text.Append(",FPrintExpressCount = FPrintExpressCount + 1");
    text.Line();
    text.Line("WHERE   FID IN ( ", call.orders, ")");
    call.connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::SetSFPackageQuantity(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::SetSFPackageQuantity>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    constexpr std::int32_t kMostParcels = 300;
    const std::int32_t parcels = NumberBetween(call.parameters, "FParcelQuantity", 1, kMostParcels);
    return StoreInExtension(call, "FParcelQuantity", std::to_string(parcels));
  });
}

bool clsSaveData::WriteInsuredAmount(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::WriteInsuredAmount>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    const Decimal amount = call.parameters.Value("FInsuredValue").ToDecimal();
    if (amount.negative()) RaiseInvalidArgument("FInsuredValue " + amount.ToString() + " is below 0");
    const std::optional<Decimal> rounded = amount.Rescale(2);
    if (!rounded) Raise(error_number::kOverflow, "Overflow");
    return StoreInExtension(call, "FInsuredValue", rounded->ToString());
  });
}

bool clsSaveData::WriteJzservice(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::WriteJzservice>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    // Null is no list, and must not take services away.
    if (call.parameters.Value("FJzService").is_null()) return false;
    TextBuilder value;
    value.Append("'{codes}'", {{"codes", KnownServices(call.connection, call.parameters.Text("FJzService"))}});
    return StoreInExtension(call, "FJzService", value.GetText());
  });
}

}  // namespace tessarlorn
