// The accounts with carriers, whose electronic waybills name the sender. An account of a shop comes before one of all
// shops. What is secret of an account is not read here.
#include "carriers/contracts.h"
#include "frame/identity.h"
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {

RecordsetPtr clsGetData::GetStartElectronicLogistics(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetStartElectronicLogistics>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    TextBuilder text;
    text.Append(R"(
SELECT  t2.FItemID AS FLogisticsID ,
        t2.FNumber ,
        t2.{name} AS FName ,
        t3.FWebShopID ,
        t1.FAccount ,
        t1.FTemplate
FROM    IC_LogisticsAccount t1 with(nolock)
        INNER JOIN IC_Logistics t2 with(nolock) ON t1.FLogisticsID = t2.FItemID
        INNER JOIN IC_WebshopToStorage t3 with(nolock) ON t1.FWebShopID IN (0, t3.FWebShopID)
WHERE   t1.FIsStarted = 1
        AND t2.FIsElectronic = 1
        AND NOT EXISTS (SELECT 1 FROM IC_LogisticsAccount t4 with(nolock) WHERE t1.FWebShopID = 0
             AND t4.FLogisticsID = t1.FLogisticsID AND t4.FWebShopID = t3.FWebShopID) --店铺自己的账号优先
)"_sql,
                {{"name", NameColumn(context_)}});
    if (parameters.HasText("FWebShopID")) {
      text.Append("        AND t3.FWebShopID = {shop}\r\n", {{"shop", parameters.Number("FWebShopID")}});
    }
    text.Line("ORDER BY t3.FWebShopID, t2.FNumber, t2.FItemID");
    return connection.ExecuteAnswer(text.GetText());
  });
}

bool clsGetData::IsThermalPrinting(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::IsThermalPrinting>;
  return ReadSwitch(contract, sDsn, "ThermalPrinting");
}

std::string clsGetData::GetJDCustomerCode(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetJDCustomerCode>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    TextBuilder text;
    text.Append(R"(
SELECT  TOP 1 t2.FCustomerCode
FROM    IC_WebshopToStorage t1 with(nolock)
        INNER JOIN IC_LogisticsAccount t2 with(nolock) ON t1.FOwnLogisticsID = t2.FLogisticsID
                                                          AND t2.FWebShopID IN (0, t1.FWebShopID)
WHERE   t1.FWebShopID = {shop} AND t2.FCustomerCode <> ''
ORDER BY t2.FWebShopID DESC
)"_sql,
                {{"shop", parameters.Number("FWebShopID")}});
    const RecordsetPtr account = connection.Query(text.GetText());
    return account->eof() ? std::string() : account->Get("FCustomerCode").ToText();
  });
}

std::optional<Dictionary> clsGetData::GetBigAccountInfo(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetBigAccountInfo>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    TextBuilder text;
    text.Append(R"(
SELECT  TOP 1 t1.FAccount AS Account ,
        t1.FMonthlyCode AS MonthlyCode ,
        t1.FSender AS Sender ,
        t1.FSenderPhone AS SenderPhone ,
        ISNULL(t2.{name}, '') AS SenderProvince ,
        ISNULL(t3.{name}, '') AS SenderCity ,
        ISNULL(t4.{name}, '') AS SenderDistrict ,
        t1.FSenderAddress AS SenderAddress ,
        t1.FTemplate AS Template
FROM    IC_LogisticsAccount t1 with(nolock)
        LEFT JOIN IC_Area t2 with(nolock) ON t1.FSenderProvince = t2.FID
        LEFT JOIN IC_Area t3 with(nolock) ON t1.FSenderCity = t3.FID
        LEFT JOIN IC_Area t4 with(nolock) ON t1.FSenderDistrict = t4.FID
WHERE   t1.FLogisticsID = {carrier} AND t1.FWebShopID IN (0, {shop})
ORDER BY t1.FWebShopID DESC
)"_sql,
                {{"name", NameColumn(context_)},
                 {"carrier", parameters.Number("FLogisticsID")},
                 {"shop", parameters.Number("FWebShopID")}});
    return FirstRow(connection.Query(text.GetText()), contract.columns);
  });
}

}  // namespace tessarlorn
