// Web shops, the buyers' contact data, the titles of order states, and SQL of the client's own.
#include "browse/contracts.h"
#include "frame/identity.h"
#include "frame/order_call.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {

RecordsetPtr clsGetData::GetWebShopData(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetWebShopData>;
  const auto body = [](Connection& connection, const Parameters&) {
    return connection.ExecuteAnswer("Select FID,FWebShopID,FWebShopName From IC_WebshopToStorage Order by FID\r\n");
  };
  return CallForDictionary(State(), contract, dctPara, body, OldSession::kKeep);
}

RecordsetPtr clsGetData::GetCommunicaInformation(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetCommunicaInformation>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    TextBuilder text;
    text.Append(R"(
SELECT  FID,
        FBuyerName ,
        FBuyerNick ,
        FConsignee ,
        FMobile ,
        FBuyerEMail
From IC_Web2ERPOrders
Where FID IN ( {FID})
)"_sql,
                {{"FID", parameters.Text("FID")}});
    return connection.ExecuteAnswer(text.GetText());
  });
}

RecordsetPtr clsGetData::GetMobileInformation(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetMobileInformation>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    TextBuilder text;
    text.Append(
        R"(
SELECT  t1.FBuyerName ,
        t1.FWebshopID ,
        t2.FWebShopName ,
        t1.FConsignee ,
        t1.FBuyerNick ,
        t1.FTelephone ,
        t1.FMobile ,
        t1.FSiteOrderID ,
        t1.FOrderID ,
        t1.FLogisticsID ,
        {name} AS FLogisticsName ,
        t1.FLogisticsOrder
FROM    IC_Web2ERPOrders t1
INNER JOIN IC_WebshopToStorage t2 ON t1.FWebshopID = t2.FWebshopID
INNER JOIN IC_Logistics t3 ON t1.FLogisticsID =t3.FItemID
Where t1.FID IN ( {FID})
)"_sql,
        {{"name", LanguageOf(context_) == "CHT" ? "t3.FName_Cht" : "t3.FName"}, {"FID", parameters.Text("FID")}});
    return connection.ExecuteAnswer(text.GetText());
  });
}

RecordsetPtr clsGetData::ExecuteSQL(std::string_view sDsn, std::string_view StrSql) {
  session_->Reset();
  OpenSession(State(), sDsn);
  RecordsetPtr rows = session_->GetConnection().ExecuteAnswer(StrSql);
  if (rows) rows->Detach();
  return rows;
}

std::optional<Dictionary> clsGetData::GetWebBillTitleData(std::string_view PropsString) {
  constexpr const Contract& contract = kContract<&clsGetData::GetWebBillTitleData>;
  return CallQuietly(State(), contract, PropsString, [](Connection& connection) {
    const RecordsetPtr states = connection.Query("select * from IC_WEBOrders_Status WITH(NOLOCK) \r\n");
    Dictionary titles;
    for (; !states->eof(); states->MoveNext()) {
      titles.SetValue(states->Get(std::size_t{0}).ToText(), states->Get(std::size_t{1}));
    }
    return std::optional<Dictionary>(std::move(titles));
  });
}

bool clsGetData::ExeP_WebBillTitleData(std::string_view PropsString) {
  constexpr const Contract& contract = kContract<&clsGetData::ExeP_WebBillTitleData>;
  return CallQuietly(State(), contract, PropsString, [](Connection& connection) {
    connection.Execute(" exec p_WebBillTitleData \r\n");
    return true;
  });
}

}  // namespace tessarlorn
