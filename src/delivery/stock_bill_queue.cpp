#include "delivery/stock_bill_queue.h"

#include <string>

#include "frame/key_list.h"
#include "frame/update_or_insert.h"

namespace tessarlorn {

void QueueStockBills(Connection& connection, std::string_view order_keys) {
  ExecuteInBatches(connection, SplitKeys(order_keys), [](TextBuilder& text, std::string_view key) {
    AppendUpdateOrInsert(text, std::to_string(KeyNumber(key)),
                         {.table = "IC_StockBillOrdersStatus",
                          .set = "FStockBillResult = '', FStockBillStatus = 1",
                          .columns = ",FStockBillStatus,FStockBillResult",
                          .values = ",1,''"});
  });
}

}  // namespace tessarlorn
