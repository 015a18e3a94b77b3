#include "samples/order_records.h"

#include <string_view>

namespace tessarlorn::cli {
namespace {

// One delivered order in eight has a stock bill still, half of these an invoice. The bills of sales orders have keys of
// orders that look like those of web-shop orders.
constexpr std::string_view kStockBills = R"(
IF NOT EXISTS (SELECT 1 FROM ICStockBill)
BEGIN
  INSERT INTO ICStockBill (FInterID, FTranType, FBillNo, FDate)
  SELECT o.FID + 1000, 21, N'XOUT' + CAST(o.FID + 1000 AS nvarchar(20)), o.FSendDate
  FROM IC_Web2ERPOrders o
  INNER JOIN IC_StockBillOrdersStatus s ON o.FID = s.FID AND s.FStockBillStatus = 2
  WHERE o.FID % 8 = 0
  INSERT INTO ICStockBillEntry (FInterID, FEntryID, FItemID, FQty, FSourceTranType, FSourceInterId, FSourceEntryID)
  SELECT b.FInterID, e.FIndex, e.FItemID, e.FQuantity, 1014301, e.FID, e.FEntryID
  FROM ICStockBill b
  INNER JOIN IC_Web2ERPOrdersEntry e ON e.FID = b.FInterID - 1000

  INSERT INTO ICStockBill (FInterID, FTranType, FBillNo, FDate)
  SELECT FInterID, 21, N'XOUT' + CAST(FInterID AS nvarchar(20)), FDate FROM SEOrder WHERE FInterID < 1000
  INSERT INTO ICStockBillEntry (FInterID, FEntryID, FItemID, FQty, FSourceTranType, FSourceInterId, FSourceEntryID)
  SELECT b.FInterID, e.FEntryID, e.FItemID, e.FQty, 81, e.FInterID, e.FEntryID
  FROM ICStockBill b
  INNER JOIN SEOrderEntry e ON b.FInterID = e.FInterID
END
)";

constexpr std::string_view kSalesInvoices = R"(
IF NOT EXISTS (SELECT 1 FROM ICSale)
BEGIN
  INSERT INTO ICSale (FInterID, FBillNo, FDate)
  SELECT FInterID, N'XSFP' + CAST(FInterID AS nvarchar(20)), FDate
  FROM ICStockBill
  WHERE FInterID < 1000 OR (FInterID - 1000) % 16 = 0
  INSERT INTO ICSaleEntry (FInterID, FEntryID, FItemID, FQty, FAmount, FSourceInterId, FSourceEntryID)
  SELECT s.FInterID, b.FEntryID, b.FItemID, b.FQty, b.FQty * i.FSalePrice, b.FInterID, b.FEntryID
  FROM ICSale s
  INNER JOIN ICStockBillEntry b ON s.FInterID = b.FInterID
  INNER JOIN t_ICItem i ON b.FItemID = i.FItemID
END
)";

constexpr std::string_view kCostInvoices = R"(
IF NOT EXISTS (SELECT 1 FROM ICExpenses)
BEGIN
  INSERT INTO ICExpenses (FinterID, FBillNo, FDate, FAmount)
  SELECT CAST(FFeeBillNO AS int), N'FY' + FFeeBillNO, MAX(FSendDate), SUM(FLogisticsCost)
  FROM IC_Web2ERPOrders
  WHERE FFeeBillNO <> ''
  GROUP BY FFeeBillNO

  DECLARE @last int
  SELECT @last = ISNULL(MAX(FinterID), 0) FROM ICExpenses
  INSERT INTO ICExpenses (FinterID, FBillNo, FDate, FAmount)
  SELECT @last + n.FNumber, N'FY' + CAST(@last + n.FNumber AS nvarchar(20)), '2026-06-30T00:00:00', 100 * n.FNumber
  FROM (SELECT 1 AS FNumber UNION ALL SELECT 2 UNION ALL SELECT 3) n
END
)";

constexpr std::string_view kServedAddresses = R"(
IF NOT EXISTS (SELECT 1 FROM IC_SaveAddressReachableInfo)
INSERT INTO IC_SaveAddressReachableInfo (FDeliveryProvince, FDeliveryCity, FDeliveryDistrict, FNumber, FArrive)
SELECT DISTINCT o.FDeliveryProvince, o.FDeliveryCity, o.FDeliveryDistrict, l.FNumber, 1
FROM IC_Web2ERPOrders o
INNER JOIN IC_Web2ERPOrdersEx x ON o.FID = x.FID AND x.FAddressReachable = 1
INNER JOIN IC_Logistics l ON o.FLogisticsID = l.FItemID AND l.FNumber <> ''
WHERE o.FID % 20 = 1 AND o.FDeliveryDistrict <> 0
)";

constexpr std::string_view kRefusedAddresses = R"(
IF NOT EXISTS (SELECT 1 FROM IC_SaveAddressReachableInfo WHERE FArrive = 0)
INSERT INTO IC_SaveAddressReachableInfo (FDeliveryProvince, FDeliveryCity, FDeliveryDistrict, FNumber, FArrive)
SELECT DISTINCT o.FDeliveryProvince, o.FDeliveryCity, o.FDeliveryDistrict, l.FNumber, 0
FROM IC_Web2ERPOrders o
INNER JOIN IC_Web2ERPOrdersEx x ON o.FID = x.FID AND x.FAddressReachable = 2
INNER JOIN IC_Logistics l ON o.FLogisticsID = l.FItemID AND l.FNumber <> ''
WHERE o.FDeliveryDistrict <> 0 AND NOT EXISTS (
  SELECT 1 FROM IC_SaveAddressReachableInfo s
  WHERE s.FDeliveryProvince = CAST(o.FDeliveryProvince AS nvarchar(50))
    AND s.FDeliveryCity = CAST(o.FDeliveryCity AS nvarchar(50))
    AND s.FDeliveryDistrict = CAST(o.FDeliveryDistrict AS nvarchar(50)) AND s.FNumber = l.FNumber)
)";

constexpr std::string_view kOutsideTask = R"(
IF NOT EXISTS (SELECT 1 FROM TPLTaskFlow WHERE FTaskType = 130)
INSERT INTO TPLTaskFlow (FTaskType, FTaskName, FWebTplType, FWebTplID, FProgressPer, FUserName, FRefreshTime, FStatus,
                         FPriority)
SELECT TOP 1 130, CAST(o.FID AS nvarchar(20)), w.FWebtplType, w.FWebtplID, 50, N'陈伟', '2026-06-30T17:30:00', 1, 10
FROM IC_Web2ERPOrders o
INNER JOIN IC_Web2ERPOrdersEx x ON o.FID = x.FID AND x.FTplStatus = '3'
INNER JOIN IC_Web2ERPOrdersEntry e ON o.FID = e.FID
INNER JOIN IC_WebtplToStorage w ON e.FStockID = w.FStockID
ORDER BY o.FID DESC
)";

// What the first finished task reported: each whole web-shop order of some that are uploaded.
constexpr std::string_view kUploadRows = R"(
IF NOT EXISTS (SELECT 1 FROM IC_UploadWebOrderIndicator)
INSERT INTO IC_UploadWebOrderIndicator (FTaskID, FSiteOrderID, FChildIDs, FIsSplit, FWebshopID, FLogisticsNumber,
                                        FLogisticsOrder, FOrderID, FID, FUpStatus, FError)
SELECT DISTINCT f.FTaskID, e.FSiteOrderID, '', 0, t.FWebshopID, l.FNumber, o.FLogisticsOrder, o.FOrderID, o.FID, 1, ''
FROM IC_Web2ERPOrders o
INNER JOIN IC_Web2ERPOrdersEntry e ON o.FID = e.FID AND e.FSiteOrderID <> ''
INNER JOIN IC_Trade t ON e.FSiteOrderID = t.FTID
INNER JOIN IC_Logistics l ON o.FLogisticsID = l.FItemID
INNER JOIN (SELECT TOP 1 FTaskID FROM IC_UploadWebOrderTaskFlow WHERE FUpStatus = 1 ORDER BY Frowid) f ON 1 = 1
WHERE o.FUpLoadStatus = 1 AND o.FOrderStatus = 14 AND o.FMergeStatus = 0 AND o.FID % 50 = 3
)";

}  // namespace

void WriteOrderRecords(Connection& connection) {
  for (const std::string_view text :
       {kStockBills, kSalesInvoices, kCostInvoices, kServedAddresses, kRefusedAddresses, kOutsideTask, kUploadRows}) {
    connection.Execute(text);
  }
  connection.Execute("EXEC p_WebBillTitleData");
}

}  // namespace tessarlorn::cli
