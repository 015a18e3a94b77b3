-- Bills and invoices that other modules make of web-shop orders.

-- Cost invoices; IC_Web2ERPOrders.FFeeBillNO says which orders one covers.
IF OBJECT_ID('ICExpenses') IS NULL
CREATE TABLE ICExpenses (
  FinterID int NOT NULL PRIMARY KEY,
  FBillNo nvarchar(50) NOT NULL DEFAULT '',
  FDate datetime NULL,
  FAmount decimal(14,4) NOT NULL DEFAULT 0);
GO

-- Stock bills.
IF OBJECT_ID('ICStockBill') IS NULL
CREATE TABLE ICStockBill (
  FInterID int NOT NULL PRIMARY KEY,
  FTranType int NOT NULL DEFAULT 0,                        -- 21 = sent to a customer
  FBillNo nvarchar(50) NOT NULL DEFAULT '',
  FDate datetime NULL);
GO
IF OBJECT_ID('ICStockBillEntry') IS NULL
CREATE TABLE ICStockBillEntry (
  FInterID int NOT NULL,                                   -- ICStockBill
  FEntryID int NOT NULL,
  FItemID int NOT NULL DEFAULT 0,
  FQty decimal(14,4) NOT NULL DEFAULT 0,
  FSourceTranType int NOT NULL DEFAULT 0,                  -- 1014301 web-shop order, 81 sales order
  FSourceInterId int NOT NULL DEFAULT 0,                   -- key of that order
  FSourceEntryID int NOT NULL DEFAULT 0,
  PRIMARY KEY (FInterID, FEntryID));
GO

-- Sales invoices.
IF OBJECT_ID('ICSale') IS NULL
CREATE TABLE ICSale (
  FInterID int NOT NULL PRIMARY KEY,
  FBillNo nvarchar(50) NOT NULL DEFAULT '',
  FDate datetime NULL);
GO
IF OBJECT_ID('ICSaleEntry') IS NULL
CREATE TABLE ICSaleEntry (
  FInterID int NOT NULL,                                   -- ICSale
  FEntryID int NOT NULL,
  FItemID int NOT NULL DEFAULT 0,
  FQty decimal(14,4) NOT NULL DEFAULT 0,
  FAmount decimal(14,4) NOT NULL DEFAULT 0,
  FSourceInterId int NOT NULL DEFAULT 0,                   -- ICStockBillEntry
  FSourceEntryID int NOT NULL DEFAULT 0,
  PRIMARY KEY (FInterID, FEntryID));
GO
