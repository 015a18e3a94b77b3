-- What orders point to: goods, warehouses, people, shops, carriers, places.

IF OBJECT_ID('t_ICItem') IS NULL
CREATE TABLE t_ICItem (
  FItemID int NOT NULL PRIMARY KEY,
  FNumber nvarchar(80) NOT NULL DEFAULT '',
  FName nvarchar(255) NOT NULL DEFAULT '',
  FModel nvarchar(255) NOT NULL DEFAULT '',
  FUnitID int NOT NULL DEFAULT 0,
  FSalePrice decimal(14,4) NOT NULL DEFAULT 0,
  FGrossWeight decimal(14,4) NOT NULL DEFAULT 0,           -- of one unit, in the unit FMaund
  FMaund int NOT NULL DEFAULT 0,                           -- t_MeasureUnit
  FPriceDecimal int NOT NULL DEFAULT 2,
  FQtyDecimal int NOT NULL DEFAULT 0,
  FBatchManager int NOT NULL DEFAULT 0,                    -- 1 = kept by batch number
  FSerialClassID int NOT NULL DEFAULT 0,                   -- above 0: kept by serial number
  FDefaultLoc int NOT NULL DEFAULT 0,                      -- usual warehouse
  FSPID int NOT NULL DEFAULT 0);                           -- stock place in it
GO

IF OBJECT_ID('t_MeasureUnit') IS NULL
CREATE TABLE t_MeasureUnit (
  FMeasureUnitID int NOT NULL PRIMARY KEY,
  FUnitGroupID int NOT NULL DEFAULT 0,
  FNumber nvarchar(30) NOT NULL DEFAULT '',
  FName nvarchar(80) NOT NULL DEFAULT '',                  -- '*' stands for no unit
  FCoefficient decimal(14,4) NOT NULL DEFAULT 1);          -- how many of it make one base unit of the group
GO

-- The same key under the name that other basic data have it by.
IF COL_LENGTH('t_MeasureUnit', 'FItemID') IS NULL
ALTER TABLE t_MeasureUnit ADD FItemID int NOT NULL DEFAULT 0;
GO
UPDATE t_MeasureUnit SET FItemID = FMeasureUnitID WHERE FItemID = 0;
GO

-- Which goods of the web shops are which items.
IF OBJECT_ID('ic_goodstomateriel') IS NULL
CREATE TABLE ic_goodstomateriel (
  FID int NOT NULL PRIMARY KEY,
  FWebGoodsCode nvarchar(80) NOT NULL DEFAULT '',          -- the merchant's code that the web shop keeps for the goods
  FMaterielCode nvarchar(80) NOT NULL DEFAULT '',          -- t_ICItem.FNumber
  FIsPriceChange int NOT NULL DEFAULT 0);                  -- 1 = makes good a difference in price, nothing to be sent
GO

-- Auxiliary attributes of goods: colours, sizes.
IF OBJECT_ID('t_AuxItem') IS NULL
CREATE TABLE t_AuxItem (
  FItemID int NOT NULL PRIMARY KEY,
  FName nvarchar(255) NOT NULL DEFAULT '');
GO

IF OBJECT_ID('t_Stock') IS NULL
CREATE TABLE t_Stock (
  FItemID int NOT NULL PRIMARY KEY,
  FNumber nvarchar(80) NOT NULL DEFAULT '',
  FName nvarchar(80) NOT NULL DEFAULT '',
  FIsStockMgr int NOT NULL DEFAULT 0,                      -- 1 = kept by stock places
  FSPGroupID int NOT NULL DEFAULT 0);
GO

IF OBJECT_ID('t_StockPlaceGroup') IS NULL
CREATE TABLE t_StockPlaceGroup (
  FSPGroupID int NOT NULL PRIMARY KEY,
  FName nvarchar(80) NOT NULL DEFAULT '',
  FDefaultSPID int NOT NULL DEFAULT 0);
GO

IF OBJECT_ID('t_StockPlace') IS NULL
CREATE TABLE t_StockPlace (
  FSPID int NOT NULL PRIMARY KEY,
  FSPGroupID int NOT NULL DEFAULT 0,
  FNumber nvarchar(80) NOT NULL DEFAULT '',
  FName nvarchar(80) NOT NULL DEFAULT '');
GO

IF OBJECT_ID('t_Emp') IS NULL
CREATE TABLE t_Emp (
  FItemID int NOT NULL PRIMARY KEY,
  FNumber nvarchar(50) NOT NULL,                           -- employee code
  FName nvarchar(80) NOT NULL DEFAULT '');
GO

IF OBJECT_ID('t_User') IS NULL
CREATE TABLE t_User (
  FUserID int NOT NULL PRIMARY KEY,
  FName nvarchar(80) NOT NULL DEFAULT '');
GO

-- Which user is in which group; group 1 are the administrators.
IF OBJECT_ID('t_Group') IS NULL
CREATE TABLE t_Group (
  FGroupID int NOT NULL,
  FUserID int NOT NULL,
  PRIMARY KEY (FGroupID, FUserID));
GO

IF OBJECT_ID('t_Currency') IS NULL
CREATE TABLE t_Currency (
  FCurrencyID int NOT NULL PRIMARY KEY,
  FNumber nvarchar(10) NOT NULL DEFAULT '',
  FName nvarchar(50) NOT NULL DEFAULT '',
  FOperator nvarchar(10) NOT NULL DEFAULT '*',             -- '*': amount * rate is in base currency, else amount / rate
  FExchangeRate decimal(14,4) NOT NULL DEFAULT 1);
GO

-- Assistant data: the texts behind the codes of an order.
IF OBJECT_ID('t_SubMessage') IS NULL
CREATE TABLE t_SubMessage (
  FInterID int NOT NULL PRIMARY KEY,
  FTypeID int NOT NULL DEFAULT 0,                          -- what the code is for; 843 after-sales states
  FName nvarchar(255) NOT NULL DEFAULT '');
GO
IF COL_LENGTH('t_SubMessage', 'FName_CHT') IS NULL
ALTER TABLE t_SubMessage ADD FName_CHT nvarchar(255) NOT NULL DEFAULT ''; -- traditional Chinese, '' = as FName
GO

-- Web shops and the warehouse that each delivers from.
IF OBJECT_ID('IC_WebshopToStorage') IS NULL
CREATE TABLE IC_WebshopToStorage (
  FID int NOT NULL PRIMARY KEY,
  FWebShopID int NOT NULL,
  FWebShopName nvarchar(100) NOT NULL DEFAULT '',
  FWebShopType int NOT NULL DEFAULT 0,                     -- the shop's platform
  FStockID int NOT NULL DEFAULT 0);
GO

-- Which web shops a user sees; administrators see all.
IF OBJECT_ID('IC_WebShopAccessData') IS NULL
CREATE TABLE IC_WebShopAccessData (
  FUserID int NOT NULL,
  FWebShopID int NOT NULL,
  FIsAccess int NOT NULL DEFAULT 1,
  PRIMARY KEY (FUserID, FWebShopID));
GO

-- Carriers.
IF OBJECT_ID('IC_Logistics') IS NULL
CREATE TABLE IC_Logistics (
  FItemID int NOT NULL PRIMARY KEY,
  FNumber nvarchar(50) NOT NULL DEFAULT '',
  FName nvarchar(100) NOT NULL DEFAULT '',                 -- simplified Chinese
  FName_CHT nvarchar(100) NOT NULL DEFAULT '');            -- traditional Chinese
GO

-- Addresses that a carrier is known to serve or not; the places are keys of IC_Area as text.
IF OBJECT_ID('IC_SaveAddressReachableInfo') IS NULL
CREATE TABLE IC_SaveAddressReachableInfo (
  FDeliveryProvince nvarchar(50) NOT NULL,
  FDeliveryCity nvarchar(50) NOT NULL,
  FDeliveryDistrict nvarchar(50) NOT NULL,
  FNumber nvarchar(50) NOT NULL,                           -- the carrier's code
  FArrive int NOT NULL DEFAULT 0,                          -- 1 = served
  PRIMARY KEY (FDeliveryProvince, FDeliveryCity, FDeliveryDistrict, FNumber));
GO

-- Where a parcel is on its way.
IF OBJECT_ID('IC_LogisticsTraceState') IS NULL
CREATE TABLE IC_LogisticsTraceState (
  FID int NOT NULL PRIMARY KEY,
  FName nvarchar(50) NOT NULL DEFAULT '');
GO

-- Countries, provinces, cities and districts.
IF OBJECT_ID('IC_Area') IS NULL
CREATE TABLE IC_Area (
  FID int NOT NULL PRIMARY KEY,
  FParentID int NOT NULL DEFAULT 0,
  FLevel int NOT NULL DEFAULT 0,                           -- 0 country to 3 district
  FName nvarchar(100) NOT NULL DEFAULT '',
  FName_CHT nvarchar(100) NOT NULL DEFAULT '');
GO

-- Promotions of order lines, and the activities that they belong to.
IF OBJECT_ID('IC_CDPSPromotion') IS NULL
CREATE TABLE IC_CDPSPromotion (
  FPromotionID int NOT NULL PRIMARY KEY,
  FActivityID int NOT NULL DEFAULT 0);
GO

IF OBJECT_ID('IC_CDPSActivity') IS NULL
CREATE TABLE IC_CDPSActivity (
  FActivityID int NOT NULL PRIMARY KEY,
  FActivityName nvarchar(255) NOT NULL DEFAULT '');
GO
