// The order list of the picking and delivery workbench.
#include "browse/contracts.h"
#include "browse/order_list_filter.h"
#include "browse/order_list_text.h"
#include "browse/user_fields.h"
#include "frame/call_frame.h"
#include "frame/identity.h"
#include "frame/parameters.h"
#include "frame/text_builder.h"
#include "platform/text/text.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {
namespace {

/// Appends the join that leaves only the web shops that the acting user may see, nothing when he may see all of them.
void AppendWebShopAccessJoin(TextBuilder& text, DataSession& session) {
  const std::int32_t user = CurrentUserId(session);
  TextBuilder query;
  query.Line(" SELECT FValue FROM t_SystemProfile WHERE FCategory='EC' and FKey = 'WebShopAccess' and FValue =0");
  query.Line(" union ");
  query.Append("select 1 from t_Group where FGroupID =1 and FUserID ={user}\r\n", {{"user", user}});
  if (session.GetAlternateConnection().Query(query.GetText())->RecordCount() > 0) return;
  text.Append(
      " inner join (select  FWebShopID  from  IC_WebShopAccessData where FIsAccess=1 and FUserID ={user}"
      ") AccessDataWebShop on t1.FWebshopID=AccessDataWebShop.FWebShopID\r\n",
      {{"user", user}});
}

bool IsRefundCheckOff(Connection& connection) {
  return connection
             .Query(
                 "SELECT 1 FROM t_SystemProfile WHERE FCategory = 'EC' AND FKey = 'NotCheckRefundOnStatus' AND "
                 "FValue = '1'\r\n")
             ->RecordCount() >= 1;
}

/// The select list: fixed columns, then the user-defined ones.
std::string SelectList(Connection& connection, const Parameters& filter, const std::string& language) {
  const double limit =
      filter.HasText("WebOrderMaxDisplayCount") ? filter.Value("WebOrderMaxDisplayCount").ToDouble() : 0;
  TextBuilder text;
  AppendOrderColumns(text, limit > 0 ? Variant(limit).ToText() : "", language == "CHS" ? "FName" : "FName_CHT");
  const std::string user_fields = UserDefinedFields(connection, "t1", OrderPage::kHeader);
  if (!user_fields.empty()) text.Line(user_fields);
  return text.GetText();
}

/// Collects the keys of the orders that an advanced filter lets through into #Data. The filter may use the lines (t18),
/// their items (t19) and the web shop's own orders (t20); what it mentions is joined.
std::string AdvancedKeysText(std::string_view tables, std::string where) {
  const auto mentions = [&where](std::string_view alias) { return FindIgnoreCase(where, alias) != std::string::npos; };
  const bool web_orders = mentions("t20.");
  const bool items = mentions("t19.");
  TextBuilder text;
  text.Line("Select distinct t1.FID into #Data");
  text.Append(tables);
  if (web_orders || items || mentions("t18.")) {
    text.Line("        LEFT JOIN IC_Web2ERPOrdersEntry t18 ON t18.FID=t1.FID");
  }
  if (items) text.Line("        LEFT JOIN t_ICItem t19 ON t19.FItemID=t18.FItemID");
  if (web_orders) {
    text.Line(
        "        LEFT JOIN ic_weborder t20 ON t18.FChildOrderID=(cast(t20.FOID as varchar(50))) and t20.FOID <> 0 ");
    where = ReplaceAll(UpperCase(where), "T20.FONLINESHOPPNO",
                       "(case when t20.FOuterSKUID <>'' then t20.FouterSKUID else t20.FOuteriid end)");
  }
  text.Append(where);
  text.Line(";");
  text.Line("CREATE NONCLUSTERED INDEX idx_#data_FID ON #Data(FID);");
  return text.GetText();
}

}  // namespace

RecordsetPtr clsGetData::GetListData(std::string_view sDsn, const Dictionary* Filter) {
  constexpr const Contract& contract = kContract<&clsGetData::GetListData>;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection& connection) -> RecordsetPtr {
    if (Filter == nullptr) return nullptr;
    const Parameters filter(Filter);
    const std::string language = LanguageOf(context_);
    const std::string where = OrderFilterText(filter, [&] { return IsRefundCheckOff(connection); });
    const std::string columns = SelectList(connection, filter, language);
    TextBuilder tables;
    AppendOrderTables(tables);
    AppendWebShopAccessJoin(tables, *session_);
    TextBuilder text;
    if (!filter.HasText("AdvancedFilter")) {
      text.Line("select * from (");
      text.Append(columns);
      text.Append(tables.GetText());
      text.Append(where);
      text.Line(") t order by FSitePayDate,FOrderID");
    } else {
      connection.Execute(AdvancedKeysText(tables.GetText(), where));
      text.Append(columns);
      text.Append(tables.GetText());
      text.Line("Where exists(select 1 from #Data where FID=t1.FID)");
      text.Line(" order by t1.FSitePayDate ,t1.FOrderID ");
      text.Line("Drop Table #Data");
    }
    return connection.ExecuteAnswer(text.GetText());
  });
}

}  // namespace tessarlorn
