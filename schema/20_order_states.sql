-- What other programs and the web shops know of an order.

-- Queue of orders whose stock bills another program creates.
IF OBJECT_ID('IC_StockBillOrdersStatus') IS NULL
CREATE TABLE IC_StockBillOrdersStatus (
  FID int NOT NULL PRIMARY KEY,
  FStockBillStatus int NOT NULL DEFAULT 1,                 -- 1 waiting, 2 created, 3 failed
  FStockBillResult nvarchar(1000) NOT NULL DEFAULT '');    -- why it failed
GO

-- Prints of an order: 1 printed, 0 not, another number while printing.
IF OBJECT_ID('IC_PrintOrderInfo') IS NULL
CREATE TABLE IC_PrintOrderInfo (
  FID int NOT NULL PRIMARY KEY,
  FIsPrintPick int NOT NULL DEFAULT 0,                     -- pick list
  FIsPrintExpress int NOT NULL DEFAULT 0,                  -- waybill
  FIsPrintSend int NOT NULL DEFAULT 0);                    -- delivery slip
GO

-- Orders with a refund under way; an order without a row has none.
IF OBJECT_ID('IC_Web2ERPOrdersRefund') IS NULL
CREATE TABLE IC_Web2ERPOrdersRefund (
  FID int NOT NULL PRIMARY KEY,
  FRefundStatus int NOT NULL DEFAULT 1,
  FIsShowWaitVerifyTemp int NOT NULL DEFAULT 0);           -- above 0: waits for verification, the order goes on
GO

-- A refund request of the web shop.
IF OBJECT_ID('IC_RefundInfo') IS NULL
CREATE TABLE IC_RefundInfo (
  FID int NOT NULL PRIMARY KEY,
  FIsRefuse int NOT NULL DEFAULT 0,                        -- 1 = refused by the merchant
  FReason nvarchar(500) NOT NULL DEFAULT '');
GO

-- Orders at an outside warehouse.
IF OBJECT_ID('IC_TplWeb2ERPOrders') IS NULL
CREATE TABLE IC_TplWeb2ERPOrders (
  FID int NOT NULL PRIMARY KEY,
  FTplOrderStatus nvarchar(50) NOT NULL DEFAULT '');       -- the warehouse's own word for the state
GO

-- Orders with home delivery and assembly.
IF OBJECT_ID('IC_Web2ERPOrdersJZ') IS NULL
CREATE TABLE IC_Web2ERPOrdersJZ (
  FID int NOT NULL PRIMARY KEY,
  FIs_jzservice_order int NOT NULL DEFAULT 1);
GO

-- Orders that the logistics network forwards by itself.
IF OBJECT_ID('IC_CainiaoShShipWeb2ERPOrders') IS NULL
CREATE TABLE IC_CainiaoShShipWeb2ERPOrders (
  FID int NOT NULL PRIMARY KEY,
  FIsShShip int NOT NULL DEFAULT 1);
GO

-- The courier's own waybill number.
IF OBJECT_ID('IC_SfexpressLogisticsOrder') IS NULL
CREATE TABLE IC_SfexpressLogisticsOrder (
  FID int NOT NULL PRIMARY KEY,
  FMailNo nvarchar(255) NOT NULL DEFAULT '');
GO

-- Waybill numbers that were sent to the web shop ahead of the delivery.
IF OBJECT_ID('IC_TradeUpdateMemoStatus') IS NULL
CREATE TABLE IC_TradeUpdateMemoStatus (
  FSiteOrderID nvarchar(50) NOT NULL PRIMARY KEY,
  FStauts int NOT NULL DEFAULT 0,                          -- 0 not, 1 sent, 2 failed
  FFailinfo nvarchar(1000) NOT NULL DEFAULT '');
GO

-- Order lines as the marketplace keeps them; a line of ours finds its own by FChildOrderID = FOID.
IF OBJECT_ID('IC_WebOrder') IS NULL
CREATE TABLE IC_WebOrder (
  FInterID int NOT NULL PRIMARY KEY,
  FOID bigint NOT NULL DEFAULT 0,                          -- 0 where the shop numbers no lines
  FTID nvarchar(50) NOT NULL DEFAULT '',                   -- its order number
  FTitle nvarchar(255) NOT NULL DEFAULT '',
  FOuterIID nvarchar(80) NOT NULL DEFAULT '',              -- the merchant's code of the goods
  FOuterSKUID nvarchar(80) NOT NULL DEFAULT '');           -- the same for the variant, '' = there is none
GO
