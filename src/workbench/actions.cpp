#include "workbench/actions.h"

#include <algorithm>
#include <array>
#include <string>

#include "workbench/statement.h"

namespace tessarlorn::workbench {
namespace {

/// A document that is printed of an order.
struct Document {
  std::int32_t id;
  std::string_view counter;
  /// In IC_PrintOrderInfo; "" for one that has no mark.
  std::string_view mark;
};
constexpr std::array kDocuments = {
    Document{10143011, "FPrintPickCount", "FIsPrintPick"},
    Document{10143012, "FPrintSendCount", "FIsPrintSend"},
    Document{10143013, "FPrintExpressCount", "FIsPrintExpress"},
    Document{10143014, "FPrintSendList", ""},
};

const Document& RequireDocument(std::int32_t id) {
  const auto* const found =
      std::find_if(kDocuments.begin(), kDocuments.end(), [&](const Document& document) { return document.id == id; });
  if (found == kDocuments.end()) {
    throw WrongValue("document", "document is 10143011, 10143012, 10143013 or 10143014, not " + std::to_string(id));
  }
  return *found;
}

/// Holds the orders that fulfil a condition on t1 until the transaction ends, and answers their keys.
RecordsetPtr Hold(Connection& connection, const Asker& asker, const std::string& keys, const std::string& condition) {
  Statement statement("SELECT t1.FID FROM IC_Web2ERPOrders t1 with(updlock) WHERE t1.FID IN (" + keys + ") AND " +
                      condition);
  return statement.Add(OfShops(asker)).Add(" ORDER BY t1.FID").SetShops(asker).Run(connection);
}

std::string KeysOf(Recordset& rows) {
  std::string keys;
  for (; !rows.eof(); rows.MoveNext()) keys.append(keys.empty() ? "" : ",").append(rows.Get("FID").ToText());
  if (rows.RecordCount() > 0) rows.MoveFirst();
  return keys;
}

}  // namespace

RecordsetPtr CountPrints(Connection& connection, const Asker& asker, const Dictionary& values) {
  const Document& document = RequireDocument(values.GetValue("document").ToInt32());
  const std::string counter(document.counter);
  RecordsetPtr held = Hold(connection, asker, KeyList(values),
                           "NOT EXISTS (SELECT 1 FROM ICPrintMaxCount m WHERE m.FID = " + std::to_string(document.id) +
                               " AND m.FPrintControlOrNo = 1 AND t1." + counter + " >= m.FPrintMaxCount)");
  const std::string keys = KeysOf(*held);
  if (keys.empty()) return held;
  connection.Execute("UPDATE IC_Web2ERPOrders SET " + counter + " = " + counter + " + 1 WHERE FID IN (" + keys + ")");
  if (document.mark.empty()) return held;
  const std::string mark(document.mark);
  connection.Execute("UPDATE IC_PrintOrderInfo SET " + mark + " = 1 WHERE FID IN (" + keys +
                     ") INSERT INTO IC_PrintOrderInfo (FID, " + mark +
                     ") SELECT FID, 1 FROM IC_Web2ERPOrders o WHERE FID IN (" + keys +
                     ") AND NOT EXISTS (SELECT 1 FROM IC_PrintOrderInfo p WHERE p.FID = o.FID)");
  return held;
}

RecordsetPtr RetryUploads(Connection& connection, const Asker& asker, const Dictionary& values) {
  RecordsetPtr held =
      Hold(connection, asker, KeyList(values),
           "(t1.FUpLoadStatus = 2 OR (t1.FUpLoadStatus = 0 AND t1.FReasonsForFailure <> '')) AND NOT EXISTS "
           "(SELECT 1 FROM IC_Web2ERPOrdersEx x WHERE x.FID = t1.FID AND x.FIsLock <> 0)");
  const std::string keys = KeysOf(*held);
  if (keys.empty()) return held;
  connection.Execute("UPDATE IC_Web2ERPOrders SET FUpLoadStatus = 0, FReasonsForFailure = '' WHERE FID IN (" + keys +
                     ") UPDATE IC_Web2ERPOrdersEntry SET FUpLoadStatus = 0 WHERE FUpLoadStatus = 2 AND FID IN (" +
                     keys + ")");
  return held;
}

}  // namespace tessarlorn::workbench
