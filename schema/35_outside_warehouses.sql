-- Warehouses of outside providers: who they are, what is submitted to them, and the queue to the program that talks to
-- them.

-- Providers.
IF OBJECT_ID('IC_WebtplFlat') IS NULL
CREATE TABLE IC_WebtplFlat (
  FID int NOT NULL PRIMARY KEY,
  FWebTplName nvarchar(100) NOT NULL DEFAULT '',
  FWebTplType int NOT NULL DEFAULT 0);                     -- what other tables know the provider by
GO

-- The providers' warehouses, and the warehouse of ours that each is.
IF OBJECT_ID('IC_WebtplToStorage') IS NULL
CREATE TABLE IC_WebtplToStorage (
  FID int NOT NULL PRIMARY KEY,
  FWebtplID nvarchar(50) NOT NULL DEFAULT '',              -- the provider's own code of the warehouse
  FWebtplName nvarchar(100) NOT NULL DEFAULT '',
  FWebtplType int NOT NULL DEFAULT 0,
  FtplCategory nvarchar(50) NOT NULL DEFAULT '',
  FStockID int NOT NULL DEFAULT 0,                         -- t_Stock, 0 = not assigned yet
  FUnUsed int NOT NULL DEFAULT 0,                          -- 1 = disabled
  FIsbad int NOT NULL DEFAULT 0);                          -- 0 normal, other: for bad goods
GO

-- Purchase orders, whose goods a provider's warehouse takes in.
IF OBJECT_ID('POOrder') IS NULL
CREATE TABLE POOrder (
  FInterID int NOT NULL PRIMARY KEY,
  FBillNo nvarchar(50) NOT NULL DEFAULT '',
  FDate datetime NULL,
  FTplStatus nvarchar(10) NOT NULL DEFAULT '',             -- as the lines'
  FTplFail nvarchar(1000) NOT NULL DEFAULT '',
  FTplflat nvarchar(50) NOT NULL DEFAULT '',
  FTplStock nvarchar(50) NOT NULL DEFAULT '');
GO
IF OBJECT_ID('POOrderEntry') IS NULL
CREATE TABLE POOrderEntry (
  FInterID int NOT NULL,                                   -- POOrder
  FEntryID int NOT NULL,
  FItemID int NOT NULL DEFAULT 0,
  FQty decimal(14,4) NOT NULL DEFAULT 0,
  FTplEStatus nvarchar(10) NOT NULL DEFAULT '',            -- '' and '0' not submitted, '3' submitted
  FTplEFail nvarchar(1000) NOT NULL DEFAULT '',
  FTplEflat nvarchar(50) NOT NULL DEFAULT '',              -- provider type
  FTplEStock nvarchar(50) NOT NULL DEFAULT '',             -- the provider's warehouse
  PRIMARY KEY (FInterID, FEntryID));
GO

-- Sales orders, whose goods it sends.
IF OBJECT_ID('SEOrder') IS NULL
CREATE TABLE SEOrder (
  FInterID int NOT NULL PRIMARY KEY,
  FBillNo nvarchar(50) NOT NULL DEFAULT '',
  FDate datetime NULL,
  FTplStatus nvarchar(10) NOT NULL DEFAULT '',             -- as the lines'
  FTplFail nvarchar(1000) NOT NULL DEFAULT '',
  FTplflat nvarchar(50) NOT NULL DEFAULT '',
  FTplStock nvarchar(50) NOT NULL DEFAULT '');
GO
IF OBJECT_ID('SEOrderEntry') IS NULL
CREATE TABLE SEOrderEntry (
  FInterID int NOT NULL,                                   -- SEOrder
  FEntryID int NOT NULL,
  FItemID int NOT NULL DEFAULT 0,
  FQty decimal(14,4) NOT NULL DEFAULT 0,
  FTplEStatus nvarchar(10) NOT NULL DEFAULT '',            -- '' and '0' not submitted, '3' submitted
  FTplEFail nvarchar(1000) NOT NULL DEFAULT '',
  FTplEflat nvarchar(50) NOT NULL DEFAULT '',              -- provider type
  FTplEStock nvarchar(50) NOT NULL DEFAULT '',             -- the provider's warehouse
  PRIMARY KEY (FInterID, FEntryID));
GO

-- What waits for the program that talks to the providers.
IF OBJECT_ID('TPLTaskFlow') IS NULL
CREATE TABLE TPLTaskFlow (
  FRowID int IDENTITY(1,1) NOT NULL PRIMARY KEY,
  FTaskId nvarchar(50) NOT NULL DEFAULT '',                -- chosen by the caller, '' for web-shop orders
  FTaskType int NOT NULL DEFAULT 0,                        -- 120 purchase lines, 130 web-shop orders, 160 sales lines
  FTaskName nvarchar(max) NOT NULL DEFAULT '',             -- keys of the documents, separated by commas
  FWebTplType int NOT NULL DEFAULT 0,
  FWebTplID nvarchar(50) NOT NULL DEFAULT '',
  FProgressPer int NOT NULL DEFAULT 0,                     -- per cent
  FUserName nvarchar(80) NOT NULL DEFAULT '',
  FRefreshTime datetime NULL,
  FStatus int NOT NULL DEFAULT 0,                          -- 0 queued, 1 under way, 2 done
  FPriority int NOT NULL DEFAULT 10);
GO
