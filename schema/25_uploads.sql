-- Reporting deliveries back to the web shops.

-- Orders as the marketplace keeps them; our lines find theirs by FSiteOrderID = FTID.
IF OBJECT_ID('IC_Trade') IS NULL
CREATE TABLE IC_Trade (
  FID int NOT NULL PRIMARY KEY,
  FTID nvarchar(50) NOT NULL DEFAULT '',                   -- its order number
  FWebshopID int NOT NULL DEFAULT 0,
  FBuyerNick nvarchar(100) NOT NULL DEFAULT '',
  FPayTime datetime NULL,
  FPayment decimal(14,4) NOT NULL DEFAULT 0);
GO

-- What an upload task has to report: one row for each web-shop order, or for each of its lines where it was split.
IF OBJECT_ID('IC_UploadWebOrderIndicator') IS NULL
CREATE TABLE IC_UploadWebOrderIndicator (
  FTaskID nvarchar(50) NOT NULL DEFAULT '',
  FSiteOrderID nvarchar(50) NOT NULL DEFAULT '',
  FChildIDs nvarchar(1000) NOT NULL DEFAULT '',            -- '' where the order was not split
  FIsSplit bit NOT NULL DEFAULT 0,
  FWebshopID int NOT NULL DEFAULT 0,
  FLogisticsNumber nvarchar(50) NOT NULL DEFAULT '',       -- the carrier's code
  FLogisticsOrder nvarchar(50) NOT NULL DEFAULT '',        -- waybill number
  FOrderID nvarchar(50) NOT NULL DEFAULT '',
  FID int NOT NULL DEFAULT 0,                              -- IC_Web2ERPOrders
  FUpStatus int NOT NULL DEFAULT 0,                        -- 0 pending, 1 done, 2 failed
  FError nvarchar(1000) NOT NULL DEFAULT '');
GO

-- Upload tasks; a user has one at a time.
IF OBJECT_ID('IC_UploadWebOrderTaskFlow') IS NULL
CREATE TABLE IC_UploadWebOrderTaskFlow (
  Frowid int IDENTITY(1,1) NOT NULL PRIMARY KEY,
  FTaskID nvarchar(50) NOT NULL DEFAULT '',
  FUserName nvarchar(80) NOT NULL DEFAULT '',              -- t_User.FName
  FUpStatus int NOT NULL DEFAULT 0,                        -- 0 = not finished
  FOrderCount int NOT NULL DEFAULT 0,
  FCreateDate datetime NULL DEFAULT GETDATE());
GO
