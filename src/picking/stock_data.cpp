// Batch numbers, warehouses and stock places of order lines, which their stock bills need.
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "picking/contracts.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {

bool clsSaveData::SaveBatchNo(std::string_view sDsn, const Vector* vctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::SaveBatchNo>;
  if (vctPara == nullptr || vctPara->empty()) return false;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection& connection) {
    TextBuilder text;
    for (const Variant& item : *vctPara) {
      const std::shared_ptr<Dictionary> choice = ItemDictionary(item);
      const Parameters line(choice.get());
      const auto unquoted = [&line](std::string_view key) { return WithoutQuotes(line.Text(key)); };
      const std::string batch = unquoted("FBatchNo");
      const std::string entry = line.TextOrDefault(KeyNamed("FEntryID", picking::kBatch));
      text.Append(
          "UPDATE IC_Web2ERPOrdersEntry SET FBatchNo = '{batch}',FStockID = '{stock}',FSPID = '{place}' WHERE FEntryID "
          "= {entry}\r\n",
          {{"batch", batch}, {"stock", unquoted("FStockID")}, {"place", unquoted("SPID")}, {"entry", entry}});
      WriteSaveOrderLog("", entry, "FBatchNo", batch);
    }
    connection.Execute(text.GetText());
    return true;
  });
}

std::optional<Vector> clsGetData::bExistStockPositionManager(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::bExistStockPositionManager>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    TextBuilder text;
    text.Append(R"(
SELECT  DISTINCT
        t1.FEntryID ,
        t1.FStockID ,
        t2.FName AS FStockName ,
        t3.FDefaultSPID AS FDefaultStockPlaceGroupID ,
        t3.FName AS FDefaultStockPlaceGroupName ,
        ISNULL(t4.FName, '') AS FDefaultStockPlaceName ,
        ISNULL(t5.FSPID,0 ) AS FDefaultItemStockPlaceID
FROM    IC_Web2ERPOrdersEntry t1
        INNER JOIN t_Stock t2 ON t1.FStockID = t2.FItemID
        INNER JOIN t_StockPlaceGroup t3 ON t2.FSPGroupID = t3.FSPGroupID --仓位组信息
        LEFT JOIN t_StockPlace t4 ON t3.FDefaultSPID = t4.FSPID
                                     AND t4.FSPID <> 0  --仓位组默认仓位信息
        LEFT JOIN t_ICItem t5 ON t1.FItemID = t5.FItemID
                                         AND t1.FStockID = t5.FDefaultLoc --物料对应的仓库仓位信息
Where t2.FIsStockMgr = 1
AND t1.FItemID NOT IN (SELECT tt2.FItemID FROM ic_goodstomateriel tt1,t_ICItem tt2 where tt1.FMaterielCode=tt2.FNumber AND tt1.FIsPriceChange=1) --去掉调差价的商品
        AND t1.FID IN ( {FID})
)"_sql,
                {{"FID", call.orders}});
    return std::optional(RowDictionaries(call.connection.Query(text.GetText()), contract.columns));
  });
}

bool clsGetData::bExistBatchOrSerialManagerItem(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::bExistBatchOrSerialManagerItem>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    TextBuilder text;
    text.Append(R"(
SELECT  COUNT(11) as flag
FROM    IC_Web2ERPOrdersEntry t1
        INNER JOIN t_ICItem t2 ON t1.FItemID = t2.FItemID
Where t1.FID in ( {FID})
        AND ( t2.FSerialClassID > 0
              OR t2.FBatchManager = 1
            )
)"_sql,
                {{"FID", call.orders}});
    return ReadFlag(call.connection, text.GetText());
  });
}

bool clsGetData::bExistBatchEmpty(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::bExistBatchEmpty>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    TextBuilder text;
    text.Line("SELECT  COUNT(1) as flag");
    text.Line("FROM    IC_Web2ERPOrdersEntry ");
    text.Line("Where FID in ( ", call.orders, ")");
    text.Line("        AND  LEN(FBatchNo)=0 ");
    return ReadFlag(call.connection, text.GetText());
  });
}

RecordsetPtr clsGetData::GetBatchNo(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetBatchNo>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    TextBuilder text;
    text.Line(
        "SELECT t1.FID,t2.FItemID,t2.FEntryID,t3.FName as FItemName,t3.FNumber,t2.FBatchNo,ISNULL(t4.FName,'') As "
        "FName,t2.FStockID,t2.FSPID,t5.FName as FSPName FROM IC_Web2ERPOrders t1 ");
    text.Line("LEFT JOIN IC_Web2ERPOrdersEntry t2 ON t1.FID = t2.FID ");
    text.Line("LEFT JOIN t_ICItem t3 ON t2.FItemID = t3.FItemID");
    text.Line("LEFT JOIN t_Stock t4 ON t2.FStockID = t4.FItemID");
    text.Line("LEFT JOIN t_StockPlace t5 ON t2.FSPID = t5.FSPID");
    text.Line("Where t1.FID in (", call.orders, ")");
    return call.connection.ExecuteAnswer(text.GetText());
  });
}

}  // namespace tessarlorn
