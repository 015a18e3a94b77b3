// Which of the caller's orders go to an outside warehouse, are there already, or can be taken back from it.
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"
#include "warehouse/contracts.h"

namespace tessarlorn {
namespace {

/// The keys that the query answers in `field`, with commas between them.
/// @param write makes the query: write(TextBuilder&)
template <typename Write>
std::string SelectKeys(InstanceState instance, const Contract& contract, std::string_view dsn, std::string_view keys,
                       std::string_view field, const Write& write) {
  return CallForTexts(instance, contract, {dsn, keys}, [&](Connection& connection) {
    TextBuilder text;
    write(text);
    return JoinColumn(connection.Query(text.GetText()), field);
  });
}

}  // namespace

std::string clsGetData::GetTplOrderInfo(std::string_view sDsn, std::string_view sFID,
                                        const Dictionary* dicWebToStorage) {
  constexpr const Contract& contract = kContract<&clsGetData::GetTplOrderInfo>;
  return SelectKeys(State(), contract, sDsn, sFID, "FID", [&](TextBuilder& text) {
    text.Line(" SELECT t1.FID  FROM IC_Web2ERPOrders t1");
    text.Line(" left join IC_Web2erpordersEx t2 on t1.FID=t2.FID");
    text.Line(" where t1.FID IN (", sFID, "  )");
    text.Line(" AND EXISTS (", " SELECT 1 FROM IC_Web2ERPOrdersEntry WHERE FID =t1.FID AND FStockID =",
              Parameters(dicWebToStorage).Text("FStockID"), " ) AND ISNULL(t2.FTplStatus,'')  in ('0','2','')");
  });
}

std::string clsGetData::GetNotTplOrderInfo(std::string_view sDsn, std::string_view sFID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetNotTplOrderInfo>;
  return SelectKeys(State(), contract, sDsn, sFID, "FID", [&](TextBuilder& text) {
    text.Line(" SELECT t1.FID  FROM IC_Web2ERPOrders t1  where FID IN ( ", sFID, " )  ");
    text.Line("  AND  EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry WHERE FID =t1.FID AND FStockID NOT IN  ");
    text.Line("  (SELECT DISTINCT FStockID FROM IC_WebtplToStorage )) ");
  });
}

std::string clsGetData::GetCancelTplOrderInfo(std::string_view sDsn, std::string_view sFID, std::int32_t tplType,
                                              std::string_view tplStockID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetCancelTplOrderInfo>;
  return SelectKeys(State(), contract, sDsn, sFID, "FID", [&](TextBuilder& text) {
    text.Line("  SELECT t1.FID  FROM IC_Web2ERPOrders t1   ");
    text.Line("  left join IC_Web2erpordersEx t2 on t1.FID=t2.FID  ");
    text.Line("  where t1.FID IN ( ", sFID, " )  ");
    text.Line("  AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry WHERE FID =t1.FID AND FStockID NOT IN  ");
    if (tplType != 0) {
      text.Append(
          "  (SELECT DISTINCT FStockID FROM IC_WebtplToStorage WHERE FWebtplType={type} And FWebtplID='{stock}')) \r\n",
          {{"type", tplType}, {"stock", tplStockID}});
    } else {
      text.Line("  (SELECT DISTINCT FStockID FROM IC_WebtplToStorage )) ");
    }
    text.Line("  AND ISNULL(t2.FTplStatus,'') ='1'");
    text.Line("  AND t1.FLogisticsOrder='' ");
  });
}

std::string clsGetData::GetCancelTplReturnOrderInfo(std::string_view sDsn, std::string_view sFID, std::int32_t tplType,
                                                    std::string_view tplStockID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetCancelTplReturnOrderInfo>;
  return SelectKeys(State(), contract, sDsn, sFID, "FEntryID", [&](TextBuilder& text) {
    text.Line("  select entry.FEntryID  from IC_Web2ERPOrdersEntry entry ");
    text.Line("  inner join IC_WebtplToStorage tpl on entry.FStockID =tpl.FStockID   ");
    text.Append("  where entry.FEntryID in ({FID}) and tpl.FWebtplID ='{stock}' and tpl.FWebtplType = {type}\r\n",
                {{"FID", sFID}, {"stock", tplStockID}, {"type", tplType}});
  });
}

std::string clsGetData::GetFiltrationTPLOrder(std::string_view sDsn, std::string_view sFID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetFiltrationTPLOrder>;
  return SelectKeys(State(), contract, sDsn, sFID, "FID", [&](TextBuilder& text) {
    text.Line("   select t1.FID ,t1.FOrderID from IC_Web2ERPOrders t1   ");
    text.Line("   left join IC_Web2ERPOrdersEx t2 on t1.FID =t2.FID    ");
    text.Line("   where t1.FID in (", sFID, ") and isNull(t2.FTplStatus,'')  IN('1','3')   ");
    text.Line(
        "   AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry WHERE FID = t1.FID AND FStockID NOT in (select distinct "
        "FStockID from IC_WebtplToStorage where FStockID <> 0))");
  });
}

}  // namespace tessarlorn
