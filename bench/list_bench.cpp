// GetListData against the same SELECT in SQLite's words, prepared once.
#include "bench/databases.h"
#include "bench/ratios.h"
#include "browse/order_list_text.h"
#include "platform/text/text.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 100000;
constexpr int kPage = 50;
constexpr int kWaitingForPicking = 2;

/// Reads a result as a client does: every value of every row.
std::size_t ReadRecordset(Recordset& rows) {
  std::size_t size = 0;
  const std::size_t width = rows.fields().size();
  for (; !rows.eof(); rows.MoveNext()) {
    for (std::size_t i = 0; i < width; ++i) size += rows.Get(i).value().index();
  }
  return size;
}

void ReadList(benchmark::State& state, int orders, const Dictionary& filter) {
  const std::string dsn = Dsn(SampleFile(orders));
  clsGetData service(TheHost());
  std::size_t rows = 0;
  for (auto _ : state) {
    const RecordsetPtr list = service.GetListData(dsn, &filter);
    benchmark::DoNotOptimize(ReadRecordset(*list));
    rows = list->RecordCount();
  }
  state.counters["rows"] = static_cast<double>(rows);
}

const Dictionary& PageFilter() {
  static const Dictionary filter{{"FOrderStatus", kWaitingForPicking}, {"WebOrderMaxDisplayCount", kPage}};
  return filter;
}

void PageOurs(benchmark::State& state) { ReadList(state, kOrders, PageFilter()); }
void PageOfMillion(benchmark::State& state) { ReadList(state, 1000000, PageFilter()); }
void PageOfTenThousand(benchmark::State& state) { ReadList(state, 10000, PageFilter()); }
void AllOurs(benchmark::State& state) { ReadList(state, kOrders, {}); }

/// What the operation selects, in the words of SQLite, and from the tables that its views name.
std::string OrderListByHand() {
  TextBuilder text;
  AppendOrderColumns(text, "", "FName");
  AppendOrderTables(text);
  return ReplaceAll(ReplaceAll(ReplaceAll(text.GetText(), "ISNULL(", "ifnull("), "with(nolock)", ""), "vw_", "IC_");
}

void ReadByHand(benchmark::State& state, const std::string& conditions, const std::string& limit) {
  const Sqlite database = OpenSqlite(SampleFile(kOrders));
  const SqliteStatement list =
      PrepareSqlite(database.get(), "SELECT * FROM (" + OrderListByHand() + " WHERE 1=1" + conditions +
                                        " AND (t22.FIsLock = 0 OR t22.FIsLock IS NULL)" + limit +
                                        ") t ORDER BY FSitePayDate, FOrderID");
  int rows = 0;
  for (auto _ : state) rows = ReadAll(list.get());
  state.counters["rows"] = rows;
}

void PageAgainst(benchmark::State& state) {
  ReadByHand(state, " AND t1.FOrderStatus = 2 AND ifnull(t23.FStockBillStatus,0) <> 1", " LIMIT 50");
}
void AllAgainst(benchmark::State& state) { ReadByHand(state, "", ""); }

}  // namespace

void AddListBenchmarks() {
  AddRatio("GetListData, page of 50 of 100,000 : by hand", "<= 1.5 x", PageOurs, PageAgainst);
  AddRatio("GetListData, all of 100,000 read : by hand", "<= 2 x", AllOurs, AllAgainst);
  AddRatio("GetListData, page of 50 of 100,000 : of 10,000", "<= 1.5 x", PageOurs, PageOfTenThousand);
  AddRatio("GetListData, page of 50 of 1,000,000 : of 10,000", "<= 1.5 x", PageOfMillion, PageOfTenThousand);
}

}  // namespace tessarlorn::bench
