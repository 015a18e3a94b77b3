// The printed index of unique codes.
#include "frame/key_list.h"
#include "frame/order_call.h"
#include "frame/text_builder.h"
#include "frame/text_width.h"
#include "picking/contracts.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {
namespace {

/// Collects the codes in #tempTable, numbered in the order of the keys. Blanks at line ends are part of the text.
std::string CollectText(std::string_view orders) {
  TextBuilder text;
  text.Append(R"(
IF OBJECT_ID('tempdb..#TempFIndex') is not null
drop table #TempFIndex
IF OBJECT_ID('tempdb..#TempTable') is not null
drop table #TempTable
IF OBJECT_ID('tempdb..#TempIndex') is not null
drop table #TempIndex
CREATE TABLE #TempFIndex
(
   FUniqueCode decimal(23, 0) ,     --唯一码
   FID INT 
) 
DELETE  FROM #TempFIndex
)"_sql);
  for (const std::string_view order : SplitKeys(orders)) {
    text.Append(R"(
INSERT INTO #TempFIndex
    (
      FUniqueCode ,                     --唯一码
      FID 
    )
Select t1.FUniqueCode ,t1.FID from IC_Web2ERPOrders t1  
Where t1.FID={FID}
)"_sql,
                {{"FID", order}});
  }
  text.Append(R"(
Select *, identity(int,1,1) as FIndex into #TempIndex from #TempFIndex
        Select  t4.FIndex ,
                t1.FUniqueCode 
        INTO    #tempTable 
        FROM    IC_Web2ERPOrders t1
                INNER JOIN #TempIndex t4 ON t1.FID=t4.FID
        GROUP BY t4.FIndex ,
                t1.FUniqueCode 
   
)"_sql);
  return text.GetText();
}

}  // namespace

std::string clsSaveData::GetUniqueCodeIndex(const Dictionary* dctParam) {
  constexpr const Contract& contract = kContract<&clsSaveData::GetUniqueCodeIndex>;
  constexpr std::size_t kEntriesPerLine = 5;
  return CallForOrders(State(), contract, dctParam, [&](const OrderCall& call) {
    call.connection.Execute(CollectText(call.orders));
    const RecordsetPtr codes = call.connection.Query("select * from #temptable \r\n");
    std::string index;
    for (std::size_t row = 1; !codes->eof(); codes->MoveNext(), ++row) {
      index += FitText(codes->Get("FIndex").ToText(), 5, 3, PadSide::kLeft) + "-" +
               FitText(codes->Get("FUniqueCode").ToText(), 20, 10, PadSide::kRight) + "| ";
      if (row % kEntriesPerLine == 0) index += "\r\n";
    }
    return index;
  });
}

}  // namespace tessarlorn
