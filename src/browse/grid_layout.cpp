// The layout of the order grid, and the choices of its lookup fields.
#include <algorithm>

#include "browse/contracts.h"
#include "frame/identity.h"
#include "frame/order_call.h"
#include "frame/text_builder.h"
#include "platform/text/text.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

std::string_view CaptionColumn(const SessionContext& context) {
  return LanguageOf(context) == "CHT" ? "t1.FCaption_CHT AS FCaption" : "t1.FCaption_CHS AS FCaption";
}

/// The choices of a lookup field as "display_id|display_id|…", with a bar in front; null when there are none.
Variant ReadChoices(Connection& connection, const Recordset& field, const std::string& list) {
  const std::size_t from = list.find("FROM");
  if (from == std::string::npos) {
    RaiseInvalidArgument("FLookUpList without FROM: " + list);
  }
  TextBuilder text;
  text.Line("declare @s varchar(1000)");
  text.Line("SELECT @s = isnull(@s,'')+'|'+", field.Get("FDSPFieldName").ToText(), "+'_'+Cast(",
            field.Get("FSRCFieldName").ToText(), " as varchar(50))", " ", list.substr(from));
  text.Line("SELECT @s");
  return connection.Query(text.GetText())->Get(std::size_t{0});
}

}  // namespace

RecordsetPtr clsGetData::GetTemplateData(const Dictionary* dctParam) {
  constexpr const Contract& contract = kContract<&clsGetData::GetTemplateData>;
  return CallForDictionary(State(), contract, dctParam, [&](Connection& connection, const Parameters&) {
    TextBuilder text;
    text.Append(R"(
SELECT t1.FPage ,
       {caption} ,
       t1.FFieldName ,
       t1.FTableName ,
       t1.FVisible ,
       t1.FTabIndex ,
       t1.FKey ,
       t1.FCtlType ,
       t1.FClassTypeID
FROM   ICClassTableInfo t1
Where FClassTypeID = 1014301
ORDER BY t1.FPage ,
       t1.FTabIndex
)"_sql,
                {{"caption", CaptionColumn(context_)}});
    return connection.ExecuteAnswer(text.GetText());
  });
}

RecordsetPtr clsGetData::GetUserDefineFilterTemplate(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::GetUserDefineFilterTemplate>;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection& connection) {
    TextBuilder text;
    text.Line("SELECT ");
    text.Append(R"(
        t1.FPage ,
        {caption} ,
        t1.FFieldName ,
        t1.FCtlType ,
        t1.Fkey ,
        t1.FTableName
FROM    ICClassTableInfo t1
Where (t1.FClassTypeID = 1014301 AND t1.FPage=1 AND t1.FNeedSave=1 AND t1.FKey NOT IN ( 'FID','FTextMulti','FOrderType'))
)"_sql,
                {{"caption", CaptionColumn(context_)}});
    text.Line(
        "OR (t1.FClassTypeID = 1014301 AND t1.FKey IN "
        "('FItemName','FPackagedGoods','FPackagedGoodsName','FIsFree','FNumber','FBarCode','FItemOnlineProductNumber',"
        "'FSiteOrderID','FTextApplyForReFund','FMealID2','FAddressReachable','FInsuredValue','FLogisticsState',"
        "'FStockBillResult','FStockBillStatus','FTplFail','FTplStatus','FLotNumber','FSerialNumber','FTpName',"
        "'FTplRemark','FUpdateMemoFail','FUpdateMemoStauts','FIsLock','FLockReason','FSPID','FStockID',"
        "'FIsPrintExpress','FIsPrintPick','FIsPrintSend','FPrintExpressCount','FPrintExpressUserID','FTplOrderID')) ");
    text.Line("ORDER BY t1.FTabIndex");
    return connection.ExecuteAnswer(text.GetText());
  });
}

std::string clsGetData::GetListBySQL(std::string_view sDsn, std::string_view sFKey) {
  constexpr const Contract& contract = kContract<&clsGetData::GetListBySQL>;
  return CallForTexts(State(), contract, {sDsn, sFKey}, [&](Connection& connection) -> std::string {
    const std::vector<std::string_view> parts = Split(sFKey, '_');
    if (parts.size() < 2) {
      Raise(error_number::kSubscriptOutOfRange,
            "Subscript out of range: " + std::string(sFKey) + " has no _ between class type and key");
    }
    TextBuilder text;
    text.Line("SELECT FLookUpList,FSRCFieldName,FDSPFieldName");
    text.Line("FROM   ICClassTableInfo ");
    text.Append("WHERE FClassTypeID={class_type} AND FKey='{key}'\r\n", {{"class_type", parts[0]}, {"key", parts[1]}});
    const RecordsetPtr field = connection.Query(text.GetText());
    if (field->eof()) return {};
    const std::string list = field->Get("FLookUpList").ToText();
    if (Trim(list).empty()) return {};
    const std::string choices = ReadChoices(connection, *field, list).ToText();
    return choices.substr(std::min<std::size_t>(1, choices.size()));
  });
}

}  // namespace tessarlorn
