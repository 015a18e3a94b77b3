-- Electronic waybills: which carriers have them, the accounts with carriers, and the services that can be asked for.

IF COL_LENGTH('IC_Logistics', 'FIsElectronic') IS NULL
ALTER TABLE IC_Logistics ADD FIsElectronic int NOT NULL DEFAULT 0;  -- 1 = has electronic waybills
GO
IF COL_LENGTH('IC_Logistics', 'FIsDefault') IS NULL
ALTER TABLE IC_Logistics ADD FIsDefault int NOT NULL DEFAULT 0;  -- 1 = the usual one
GO

-- The carrier that belongs to the shop's marketplace, 0 = none.
IF COL_LENGTH('IC_WebshopToStorage', 'FOwnLogisticsID') IS NULL
ALTER TABLE IC_WebshopToStorage ADD FOwnLogisticsID int NOT NULL DEFAULT 0;
GO

-- As whom a carrier knows a web shop, and the sender that its waybills name.
IF OBJECT_ID('IC_LogisticsAccount') IS NULL
CREATE TABLE IC_LogisticsAccount (
  FLogisticsID int NOT NULL,                               -- IC_Logistics
  FWebShopID int NOT NULL DEFAULT 0,                       -- 0 = every shop without an account of its own
  FAccount nvarchar(80) NOT NULL DEFAULT '',
  FSecret nvarchar(255) NOT NULL DEFAULT '',               -- for the program that asks for waybills
  FCustomerCode nvarchar(80) NOT NULL DEFAULT '',          -- the carrier's number of the merchant
  FMonthlyCode nvarchar(80) NOT NULL DEFAULT '',           -- for monthly billing
  FIsStarted int NOT NULL DEFAULT 0,                       -- 1 = electronic waybills are switched on
  FTemplate nvarchar(80) NOT NULL DEFAULT '',              -- the carrier's layout of the waybill
  FSender nvarchar(100) NOT NULL DEFAULT '',
  FSenderPhone nvarchar(50) NOT NULL DEFAULT '',
  FSenderProvince int NOT NULL DEFAULT 0,                  -- this and the next two: IC_Area
  FSenderCity int NOT NULL DEFAULT 0,
  FSenderDistrict int NOT NULL DEFAULT 0,
  FSenderAddress nvarchar(500) NOT NULL DEFAULT '',
  PRIMARY KEY (FLogisticsID, FWebShopID));
GO

-- State of the electronic waybill.
IF COL_LENGTH('IC_Web2ERPOrders', 'FEMSStatus') IS NULL
ALTER TABLE IC_Web2ERPOrders ADD FEMSStatus int NOT NULL DEFAULT 0; -- 1 asked for, 2 given, 3 printed, 4 cancelled
GO

-- Home-delivery and installation services.
IF OBJECT_ID('IC_JzService') IS NULL
CREATE TABLE IC_JzService (
  FCode nvarchar(20) NOT NULL PRIMARY KEY,
  FName nvarchar(100) NOT NULL DEFAULT '');
GO

-- Those that an order's shipment has: codes with commas between them.
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FJzService') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FJzService nvarchar(500) NULL;
GO
