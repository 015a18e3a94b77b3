// Arguments for any operation, made of a value for each name, and answers that lead it through its statements.
#pragma once

#include <functional>

#include "platform/text/text.h"
#include "support/recording_driver.h"
#include "tessarlorn/operations.h"

namespace tessarlorn {

/// Answers the value of an argument or key that is no collection; Empty leaves a key out.
using SampleOf = std::function<Variant(std::string_view name, ValueType type, Standing stands)>;

inline Dictionary SampleKeys(std::span<const Key> keys, const std::string& dsn, const SampleOf& sample) {
  Dictionary values;
  for (const Key& key : keys) {
    const Variant value = key.is_connection()              ? Variant(dsn)
                          : key.type == ValueType::kVector ? Vector{SampleKeys(key.item_keys, dsn, sample)}
                                                           : sample(key.name, key.type, key.stands);
    if (!value.is_empty()) values.SetValue(key.name, value);
  }
  return values;
}

/// Where every key counts it is that of "key", with the value of "value".
inline std::vector<Variant> SampleArguments(const Operation& operation, const std::string& dsn,
                                            const SampleOf& sample) {
  std::vector<Variant> arguments;
  for (const Argument& argument : operation.arguments()) {
    if (argument.any_key) {
      const std::string key = sample("key", ValueType::kString, argument.stands).ToText();
      arguments.emplace_back(Dictionary{{key, sample("value", ValueType::kString, argument.stands)}});
    } else if (argument.keys.empty()) {
      arguments.push_back(argument.is_connection ? Variant(dsn)
                                                 : sample(argument.name, argument.type, argument.stands));
    } else {
      const Dictionary keys = SampleKeys(argument.keys, dsn, sample);
      arguments.push_back(argument.type == ValueType::kVector ? Variant(Vector{keys}) : Variant(keys));
    }
  }
  return arguments;
}

/// The fields of one row that answers every question: texts tell their field, all others are 1.
inline constexpr std::string_view kFields =
    "Flag FID FItemID FNumber=<code> FSiteOrderID=<site> Num=2 FChildOrderID=<child> FWebshopID FLogisticsID "
    "FLogisticsOrder=<waybill> FOrderID=<order> MaxNum=7 FLookUpList=SELECT-x-FROM-<list> FSRCFieldName=<id> "
    "FDSPFieldName=<name> FDeliveryProvince=<province> FDeliveryCity=<city> FDeliveryDistrict=<district> "
    "FPrintControlOrNo FPrintMaxCount FUniqueCode FPrintSendCount FValue FWebShopType FStatus=0 FEntryID FStockID "
    "FStockName=<stock> FDefaultStockPlaceGroupID FDefaultStockPlaceGroupName=<group> FDefaultStockPlaceName=<place> "
    "FDefaultItemStockPlaceID FWebtplType FWebtplID FIndex FWeight FGrossUnitName=KG FUnitName=KG FCoefficient "
    "TotalLogisticsCosts UserDefineFld=,t1.<user-field> FCode=<FJzService> FIsLock FCheckStatus FOrderStatus "
    "FCloseType FInRefund FServiceStatusName FCustomerCode Account MonthlyCode Sender SenderPhone SenderProvince "
    "SenderCity SenderDistrict SenderAddress Template FLogisticsName FConsignee FPIckingGoodsStatus FWeighttingStatus "
    "FParcelQuantity Count";

inline RecordsetPtr AnswerOneRow(std::string_view text) {
  if (text.starts_with(" select count(1) as Fcount")) return TextRows({"Fcount"}, {{"0"}});
  if (text.find("AccessData") == std::string_view::npos && text.find("WebShopAccess") != std::string_view::npos) {
    return TextRows({"FValue"}, {});
  }
  std::vector<std::string> names;
  std::vector<std::string> values;
  for (const std::string_view field : Split(kFields, ' ')) {
    const std::size_t end = std::min(field.find('='), field.size());
    names.emplace_back(field.substr(0, end));
    values.push_back(end == field.size() ? "1" : ReplaceAll(field.substr(end + 1), "-", " "));
  }
  std::vector<const char*> cells;
  for (const std::string& value : values) cells.push_back(value.c_str());
  return TextRows(names, {cells});
}

}  // namespace tessarlorn
