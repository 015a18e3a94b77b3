// The outside warehouses that are configured, and the warehouses of ours that they stand for.
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"
#include "warehouse/contracts.h"

namespace tessarlorn {

RecordsetPtr clsGetData::GetTplCompany(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetTplCompany>;
  return CallForDictionary(State(), contract, dctPara, [](Connection& connection, const Parameters&) {
    TextBuilder text;
    text.Line(
        "   select distinct FWebTplName,FWebTplType from IC_WebtplFlat where FWebTplType in (select FWebTplType   from "
        "IC_WebtplToStorage) order by fWebtplType asc   ");
    return connection.ExecuteAnswer(text.GetText());
  });
}

RecordsetPtr clsGetData::GetTplStock(const Dictionary* dctPara, bool bIsBad) {
  constexpr const Contract& contract = kContract<&clsGetData::GetTplStock>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    TextBuilder text;
    text.Line("    select FWebtplID,FWebtplName from IC_WebtplToStorage where ", bIsBad ? "" : "FIsbad=0  and ",
              " FUnUsed<>1 AND FWebtplType=", parameters.Text("FWebtplType"), " order by FWebtplID   ");
    return connection.ExecuteAnswer(text.GetText());
  });
}

std::optional<Vector> clsGetData::GetTplCompanyNew(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::GetTplCompanyNew>;
  return CallForTexts(State(), contract, {sDsn}, [](Connection& connection) {
    TextBuilder text;
    text.Line(
        "   select distinct FtplCategory,FWebtplType,FWebtplID,FStockID  from IC_WebtplToStorage where FUnUsed<>1 order "
        "by FWebtplType asc   ");
    return std::optional(RowDictionaries(connection.Query(text.GetText()), contract.columns));
  });
}

}  // namespace tessarlorn
