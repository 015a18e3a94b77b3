// Whether the carrier serves an order's address: which orders are still to be checked, and what a check found.
#include <array>
#include <set>
#include <string>
#include <vector>

#include "carriers/contracts.h"
#include "frame/key_list.h"
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "frame/update_or_insert.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {
namespace {

/// The type of UpdateAddressReachableState that asks for a new check.
constexpr std::int32_t kToBeChecked = 4;

/// Province, city, district and carrier code.
using Combination = std::array<std::string, 4>;

/// FID and FOrderID of those of the orders that have a carrier.
/// @param condition on their reachability, up to the list of orders
RecordsetPtr OrdersWithCarrier(Connection& connection, std::string_view condition, std::string_view orders) {
  TextBuilder text;
  text.Line(
      " SELECT t1.FID ,t1.FOrderID ,ISNULL(t2.FAddressReachable,4) AS FAddressReachable FROM IC_Web2ERPOrders t1 ");
  text.Line(" LEFT JOIN IC_Web2ERPOrdersEx t2 ON t1.FID =t2.FID ");
  text.Line(" WHERE t1.FLogisticsID <> 0 And t1.FLogisticsID <> '' ");
  text.Line(condition, orders, ")");
  return connection.Query(text.GetText());
}

void AskForCheck(Connection& connection, std::string_view orders) {
  TextBuilder text;
  text.Line(" UPDATE IC_Web2ERPOrdersEx");
  text.Line(" SET FAddressReachable =4");
  text.Line(" WHERE FID IN (", orders, ")");
  connection.Execute(text.GetText());
}

void MarkReachable(Connection& connection, std::string_view orders) {
  ExecuteInBatches(connection, SplitKeys(orders), [](TextBuilder& text, std::string_view key) {
    AppendUpdateOrInsert(text, key,
                         {.table = "IC_Web2ERPOrdersEx",
                          .set = "FAddressReachable=1  ",
                          .columns = " ,FOrderID,FLotNumber,FSerialNumber,FCreateDate,FAddressReachable",
                          .values = ",'','','',GETDATE(),1"});
  });
}

/// The complete addresses of the orders with their carriers, each once, in the order of the rows.
std::vector<Combination> Combinations(Connection& connection, std::string_view orders) {
  TextBuilder text;
  text.Line(" select t1.FDeliveryProvince,t1.FDeliveryCity,t1.FDeliveryDistrict,t2.FNumber from IC_Web2ERPOrders t1");
  text.Line(" left join IC_Logistics t2 on t1.FLogisticsID=t2.FItemID ");
  text.Line(" where t1.FID in (", orders,
            ") and t1.FDeliveryProvince <>'' and t1.FDeliveryCity <>'' and t1.FDeliveryDistrict <>'' ");
  text.Line(" and t2.FNumber <>'' and t1.FLogisticsID <>0 ");
  const RecordsetPtr rows = connection.Query(text.GetText());
  std::vector<Combination> combinations;
  std::set<Combination> known;
  for (; !rows->eof(); rows->MoveNext()) {
    Combination combination = {rows->Get("FDeliveryProvince").ToText(), rows->Get("FDeliveryCity").ToText(),
                               rows->Get("FDeliveryDistrict").ToText(), rows->Get("FNumber").ToText()};
    if (known.insert(combination).second) combinations.push_back(std::move(combination));
  }
  return combinations;
}

void Remember(Connection& connection, const std::vector<Combination>& combinations) {
  ExecuteInBatches(connection, combinations, [](TextBuilder& text, const Combination& combination) {
    const auto& [province, city, district, carrier] = combination;
    const std::initializer_list<Spliced> values = {
        {"province", province}, {"city", city}, {"district", district}, {"carrier", carrier}};
    TextBuilder condition;
    condition.Append(
        "FDeliveryProvince ='{province}' and FDeliveryCity='{city}' and FDeliveryDistrict='{district}' and "
        "FNumber='{carrier}'",
        values);
    text.Line(" IF EXISTS ( select 1 from IC_SaveAddressReachableInfo where ", condition.GetText(), ") ");
    text.Line("    BEGIN  update IC_SaveAddressReachableInfo set FArrive =1 where ", condition.GetText(), " END ");
    text.Append(
        "    ELSE BEGIN insert "
        "IC_SaveAddressReachableInfo(FDeliveryProvince,FDeliveryCity,FDeliveryDistrict,FNumber,FArrive)  values "
        "('{province}','{city}','{district}','{carrier}',1) END \r\n",
        values);
  });
}

}  // namespace

bool clsSaveData::UpdateAddressReachableState(std::string_view sDsn, std::string_view sFID, std::int32_t lType) {
  constexpr const Contract& contract = kContract<&clsSaveData::UpdateAddressReachableState>;
  return CallForTexts(State(), contract, {sDsn, sFID}, [&](Connection& connection) {
    if (lType == kToBeChecked) {
      AskForCheck(connection, sFID);
    } else {
      MarkReachable(connection, sFID);
      Remember(connection, Combinations(connection, sFID));
    }
    return true;
  });
}

bool clsGetData::bIsAddressReachable(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::bIsAddressReachable>;
  return ReadSwitch(contract, sDsn, "AddressReachable");
}

std::optional<Dictionary> clsGetData::GetNeedAddressReachableInfo(std::string_view sDsn, std::string_view sFID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetNeedAddressReachableInfo>;
  return CallForTexts(State(), contract, {sDsn, sFID}, [&](Connection& connection) {
    const RecordsetPtr orders =
        OrdersWithCarrier(connection, " And (ISNULL(t2.FAddressReachable,4) IN (4))  And t1.FID in (", sFID);
    return std::optional(Dictionary{{"FID", JoinColumn(orders, "FID")}, {"FOrderID", JoinColumn(orders, "FOrderID")}});
  });
}

std::optional<Vector> clsGetData::GetNoAddressReachableInfo(std::string_view sDsn, std::string_view sFID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetNoAddressReachableInfo>;
  return CallForTexts(State(), contract, {sDsn, sFID}, [&](Connection& connection) {
    const RecordsetPtr orders =
        OrdersWithCarrier(connection, " And (ISNULL(t2.FAddressReachable,4) NOT IN (1,4,5))  And t1.FID in (", sFID);
    return std::optional(RowDictionaries(orders, contract.columns));
  });
}

}  // namespace tessarlorn
