-- Titles of the order list's tabs, with the number of orders in each state. Whoever reads them takes the first column
-- for the state and the second for the title.
IF OBJECT_ID('IC_WEBOrders_Status') IS NULL
CREATE TABLE IC_WEBOrders_Status (
  FOrderStatus int NOT NULL PRIMARY KEY,
  FTitle nvarchar(100) NOT NULL DEFAULT '',
  FName nvarchar(50) NOT NULL DEFAULT '');
GO

-- Refreshes the titles, and adds the states that are missing.
IF OBJECT_ID('p_WebBillTitleData') IS NOT NULL DROP PROCEDURE p_WebBillTitleData
GO
CREATE PROCEDURE p_WebBillTitleData AS
BEGIN
  SET NOCOUNT ON;
  INSERT INTO IC_WEBOrders_Status (FOrderStatus, FName)
  SELECT s.FOrderStatus, s.FName
  FROM (SELECT 2 AS FOrderStatus, N'待配货' AS FName UNION ALL SELECT 6, N'待发货' UNION ALL SELECT 14, N'已发货') s
  WHERE NOT EXISTS (SELECT 1 FROM IC_WEBOrders_Status e WHERE e.FOrderStatus = s.FOrderStatus);

  UPDATE s
  SET FTitle = s.FName + N'(' + CAST(ISNULL(o.FCount, 0) AS nvarchar(10)) + N')'
  FROM IC_WEBOrders_Status s
  LEFT JOIN (SELECT FOrderStatus, COUNT(*) AS FCount FROM IC_Web2ERPOrders GROUP BY FOrderStatus) o
    ON o.FOrderStatus = s.FOrderStatus;
END
GO
