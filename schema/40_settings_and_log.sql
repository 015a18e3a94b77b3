-- Switches, the layout of the order grid, and the logs.

-- Switches; '1' is on where a switch has no other values.
IF OBJECT_ID('t_SystemProfile') IS NULL
CREATE TABLE t_SystemProfile (
  FCategory nvarchar(50) NOT NULL,
  FKey nvarchar(80) NOT NULL,
  FValue nvarchar(255) NOT NULL DEFAULT '',
  FDescription nvarchar(255) NOT NULL DEFAULT '',
  PRIMARY KEY (FCategory, FKey));
GO

-- Fields of the order grid, class type 1014301.
IF OBJECT_ID('ICClassTableInfo') IS NULL
CREATE TABLE ICClassTableInfo (
  FClassTypeID int NOT NULL,
  FPage int NOT NULL,                                      -- 1 header, 2 lines
  FKey nvarchar(50) NOT NULL,
  FCaption_CHS nvarchar(100) NOT NULL DEFAULT '',
  FCaption_CHT nvarchar(100) NOT NULL DEFAULT '',
  FFieldName nvarchar(50) NOT NULL DEFAULT '',
  FTableName nvarchar(50) NOT NULL DEFAULT '',
  FVisible int NOT NULL DEFAULT 1,
  FTabIndex int NOT NULL DEFAULT 0,
  FCtlType int NOT NULL DEFAULT 0,
  FNeedSave int NOT NULL DEFAULT 0,
  FUserDefine int NOT NULL DEFAULT 0,                      -- 1 = a column that this installation added
  FLookUpList nvarchar(1000) NOT NULL DEFAULT '',          -- SELECT that lists the choices of a lookup field,
  FSRCFieldName nvarchar(50) NOT NULL DEFAULT '',          -- its id column
  FDSPFieldName nvarchar(50) NOT NULL DEFAULT '',          -- and the column shown
  PRIMARY KEY (FClassTypeID, FPage, FKey));
GO

-- Who did what to which order.
IF OBJECT_ID('IC_TradeLog') IS NULL
CREATE TABLE IC_TradeLog (
  FID int IDENTITY(1,1) NOT NULL PRIMARY KEY,
  FOrderFID int NULL,
  FOPUserID int NOT NULL DEFAULT 0,
  FOPCode int NOT NULL DEFAULT 0,                          -- 2001 warehouse, 3003 picking check, 3005 step back,
                                                           -- 3007 cost invoice, 3008 weighing, 3013, 3014 picking
  FUserIP nvarchar(64) NOT NULL DEFAULT '',
  FOPTime datetime NULL,
  FItemID int NOT NULL DEFAULT 0,                          -- 0 = the whole order
  FOldValue nvarchar(255) NULL,
  FNewValue nvarchar(255) NULL);
GO

-- New values of single fields.
IF OBJECT_ID('IC_TradeFieldLog') IS NULL
CREATE TABLE IC_TradeFieldLog (
  FID int IDENTITY(1,1) NOT NULL PRIMARY KEY,
  FOrderFID int NULL,                                      -- none where only the line is known
  FEntryID int NULL,                                       -- 0 = the header
  FFieldName nvarchar(64) NOT NULL DEFAULT '',
  FNewValue nvarchar(2000) NULL,
  FOPUserID int NOT NULL DEFAULT 0,
  FOPTime datetime NULL);
GO
