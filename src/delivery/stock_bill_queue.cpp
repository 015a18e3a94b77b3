#include "delivery/stock_bill_queue.h"

#include "frame/key_list.h"

namespace tessarlorn {

void QueueStockBills(Connection& connection, std::string_view order_keys) {
  ExecuteInBatches(connection, SplitKeys(order_keys), [](TextBuilder& text, std::string_view key) {
    text.Append(R"(
IF EXISTS (SELECT 1 FROM IC_StockBillOrdersStatus WHERE FID = {n})
    BEGIN
        UPDATE IC_StockBillOrdersStatus
        SET FStockBillResult = '', FStockBillStatus = 1
        WHERE FID = {n}
    END
ELSE
    BEGIN
        INSERT INTO IC_StockBillOrdersStatus(FID,FStockBillStatus,FStockBillResult)
        VALUES ({n},1,'')
    END
)"_sql,
                {{"n", KeyNumber(key)}});
  });
}

}  // namespace tessarlorn
