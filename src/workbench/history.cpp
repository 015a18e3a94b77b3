#include "workbench/history.h"

#include "workbench/statement.h"

namespace tessarlorn::workbench {

RecordsetPtr AskHistory(Connection& connection, const Asker& asker, const Dictionary& values) {
  Statement statement;
  statement
      .Add(
          "SELECT TOP (1000) t2.FTime, t2.FKind, t2.FName, t2.FEntryID, ISNULL(t3.FName, '') AS FUserName, t2.FAddress, "
          "t2.FOldValue, t2.FNewValue FROM ("
          "SELECT FOPTime AS FTime, 'operation' AS FKind, CAST(FOPCode AS nvarchar(64)) AS FName, FItemID AS FEntryID, "
          "FOPUserID, FUserIP AS FAddress, ISNULL(FOldValue, '') AS FOldValue, ISNULL(FNewValue, '') AS FNewValue, FID "
          "AS FNumber FROM IC_TradeLog with(nolock) WHERE FOrderFID = @order UNION ALL "
          "SELECT FOPTime, 'field', FFieldName, ISNULL(FEntryID, 0), FOPUserID, '', '', ISNULL(FNewValue, ''), FID "
          "FROM IC_TradeFieldLog with(nolock) WHERE FOrderFID = @order) t2 "
          "LEFT JOIN t_User t3 ON t3.FUserID = t2.FOPUserID "
          "WHERE EXISTS (SELECT 1 FROM IC_Web2ERPOrders t1 with(nolock) WHERE t1.FID = @order")
      .Add(OfShops(asker))
      .Add(") ORDER BY t2.FTime DESC, t2.FKind, t2.FNumber DESC");
  return statement.Set("@order", "int", values.GetValue("order")).SetShops(asker).Run(connection);
}

}  // namespace tessarlorn::workbench
