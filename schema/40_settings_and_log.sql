-- Switches, limits and counters, the layout of the order grid, and the logs.

-- Switches; '1' is on where a switch has no other values.
IF OBJECT_ID('t_SystemProfile') IS NULL
CREATE TABLE t_SystemProfile (
  FCategory nvarchar(50) NOT NULL,
  FKey nvarchar(80) NOT NULL,
  FValue nvarchar(255) NOT NULL DEFAULT '',
  FDescription nvarchar(255) NOT NULL DEFAULT '',
  PRIMARY KEY (FCategory, FKey));
GO

-- Settings of the programs that synchronise with other systems.
IF OBJECT_ID('IC_SynchSetting') IS NULL
CREATE TABLE IC_SynchSetting (
  FSettingName nvarchar(80) NOT NULL PRIMARY KEY,
  FSettingValue nvarchar(255) NOT NULL DEFAULT '');
GO

-- How often each document of an order may be printed.
IF OBJECT_ID('ICPrintMaxCount') IS NULL
CREATE TABLE ICPrintMaxCount (
  FID int NOT NULL PRIMARY KEY,                            -- 10143011 pick list, 10143012 delivery note,
                                                           -- 10143013 waybill, 10143014 delivery list
  FName nvarchar(80) NOT NULL DEFAULT '',
  FPrintControlOrNo bit NOT NULL DEFAULT 0,                -- 1 = limited
  FPrintMaxCount int NOT NULL DEFAULT 0,
  FPrintAfterCheck bit NOT NULL DEFAULT 0);                -- 1 = only once the order is checked
GO

-- Running numbers: the period that each belongs to, and the last one that was handed out. Whoever needs a number first
-- adds its rows.
IF OBJECT_ID('IC_MaxNum') IS NULL
CREATE TABLE IC_MaxNum (
  FTableName nvarchar(50) NOT NULL PRIMARY KEY,
  FUserID int NOT NULL DEFAULT 0,
  FNumber int NOT NULL DEFAULT 0,                          -- such as year and month, six digits
  FFlag int NOT NULL DEFAULT 0);
GO
IF OBJECT_ID('ICMaxNum') IS NULL
CREATE TABLE ICMaxNum (
  FTableName nvarchar(50) NOT NULL PRIMARY KEY,
  FMaxNum int NOT NULL DEFAULT 0);
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
