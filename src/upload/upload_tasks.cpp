// What an upload asks before it begins: whether one runs already, and what shops and child orders it is about.
#include "frame/call_frame.h"
#include "frame/identity.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"
#include "upload/contracts.h"

namespace tessarlorn {

bool clsGetData::isRunUploadOrder(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::isRunUploadOrder>;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection&) {
    TextBuilder text;
    text.Line(" SELECT  Frowid  ");
    text.Line(" FROM IC_UploadWebOrderTaskFlow ");
    text.Append(" where FUserName in (select fName from t_user where fuserID= {user})",
                {{"user", CurrentUserId(*session_)}});
    text.Line(" and FUpStatus=0 ");
    return !session_->GetAlternateConnection().Query(text.GetText())->eof();
  });
}

bool clsGetData::GetSplitChrildOrderIDs(std::string_view strDSN, std::int32_t FID, std::string_view SiteOrderID,
                                        Variant& ChildOrderIDs) {
  constexpr const Contract& contract = kContract<&clsGetData::GetSplitChrildOrderIDs>;
  if (FID == 0) return false;
  return CallForTexts(State(), contract, {strDSN}, [&](Connection& connection) {
    const auto child_orders = [&](std::string_view comparison) {
      TextBuilder text;
      text.Append(
          " SELECT FChildOrderID FROM IC_Web2ERPOrdersEntry where FSiteOrderID='{site_order}' and FID {comparison} "
          "{FID}\r\n",
          {{"site_order", SiteOrderID}, {"comparison", comparison}, {"FID", FID}});
      return connection.Query(text.GetText());
    };
    if (child_orders("<>")->eof()) return false;
    // What the caller passed in stays in front.
    std::string children = ChildOrderIDs.ToText() + JoinColumn(child_orders("="), "FChildOrderID");
    if (children.ends_with(',')) children.pop_back();
    ChildOrderIDs = std::move(children);
    return true;
  });
}

bool clsGetData::CheckWebShopTypeSameByOrders(std::string_view sDsn, std::string_view strIDs,
                                              std::int16_t& WebShopType) {
  constexpr const Contract& contract = kContract<&clsGetData::CheckWebShopTypeSameByOrders>;
  if (strIDs.empty()) {
    WebShopType = 0;
    return true;
  }
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    TextBuilder text;
    text.Line("select distinct t1.FWebShopType from IC_WebshopToStorage t1");
    text.Line(" where exists(select 1 from IC_Web2ERPOrders t2  where t1.FWebshopID = t2.FWebshopID and t2.FID in (",
              strIDs, "))");
    const RecordsetPtr types = connection.Query(text.GetText());
    if (types->RecordCount() > 1) return false;
    WebShopType = types->eof() ? std::int16_t{0} : types->Get("FWebShopType").ToInt16();
    return true;
  });
}

std::int16_t clsGetData::GetWebShopType(std::string_view sDsn, std::string_view sFWebshopID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetWebShopType>;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection& connection) -> std::int16_t {
    TextBuilder text;
    text.Append("SELECT FWebShopType FROM IC_WebshopToStorage WHERE FWebshopID ='{shop}'\r\n", {{"shop", sFWebshopID}});
    const RecordsetPtr shop = connection.Query(text.GetText());
    return shop->eof() ? std::int16_t{0} : shop->Get("FWebShopType").ToInt16();
  });
}

}  // namespace tessarlorn
