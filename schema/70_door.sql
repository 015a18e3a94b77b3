-- Who may call over HTTP, and what was called. All times are UTC by the database's clock, so that servers agree.

-- Names are unique without regard to case, as the database compares texts.
IF OBJECT_ID('DoorUser') IS NULL
CREATE TABLE DoorUser (
  FID int IDENTITY(1,1) NOT NULL PRIMARY KEY,
  FName nvarchar(64) NOT NULL UNIQUE,
  FHash nvarchar(128) NOT NULL,                            -- of the password: argon2id, with salt and costs
  FErpUser int NOT NULL,                                   -- t_User
  FLanguage nvarchar(10) NOT NULL DEFAULT 'CHS',
  FRole nvarchar(64) NOT NULL,                             -- a built-in role, or one of DoorRole
  FSql bit NOT NULL DEFAULT 0,                             -- 1 = may pass SQL, with the role administrator only
  FDisabled bit NOT NULL DEFAULT 0,
  FMade datetime2(3) NOT NULL DEFAULT SYSUTCDATETIME());
GO

-- What programs log in with.
IF OBJECT_ID('DoorToken') IS NULL
CREATE TABLE DoorToken (
  FID int IDENTITY(1,1) NOT NULL PRIMARY KEY,
  FUserID int NOT NULL,                                    -- DoorUser
  FName nvarchar(64) NOT NULL,
  FHash binary(32) NOT NULL UNIQUE,                        -- SHA-256 of the token
  FMade datetime2(3) NOT NULL DEFAULT SYSUTCDATETIME(),
  FExpires datetime2(3) NULL,                              -- NULL = never
  FUsed datetime2(3) NULL,                                 -- last use, to the minute
  UNIQUE (FUserID, FName));
GO

-- Sessions of people.
IF OBJECT_ID('DoorSession') IS NULL
CREATE TABLE DoorSession (
  FHash binary(32) NOT NULL PRIMARY KEY,                   -- SHA-256 of the cookie
  FUserID int NOT NULL,                                    -- DoorUser
  FBegun datetime2(3) NOT NULL,
  FUsed datetime2(3) NOT NULL);                            -- last use, to the minute
GO
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_DoorSession_User' AND object_id = OBJECT_ID('DoorSession'))
CREATE INDEX IX_DoorSession_User ON DoorSession (FUserID);
GO

-- What users keep of the page, as columns and views.
IF OBJECT_ID('DoorKept') IS NULL
CREATE TABLE DoorKept (
  FUserID int NOT NULL,                                    -- DoorUser
  FName nvarchar(40) NOT NULL,
  FValue nvarchar(max) NOT NULL,                           -- JSON
  PRIMARY KEY (FUserID, FName));
GO

-- Roles beside the built-in ones.
IF OBJECT_ID('DoorRole') IS NULL
CREATE TABLE DoorRole (
  FName nvarchar(64) NOT NULL PRIMARY KEY,
  FOperations nvarchar(max) NOT NULL);                     -- names with commas between them
GO

-- Failed logins of the last hour, and those that are being checked.
IF OBJECT_ID('DoorThrottle') IS NULL
CREATE TABLE DoorThrottle (
  FKey nvarchar(100) NOT NULL PRIMARY KEY,                 -- u: and a user, a: and an address
  FFailures int NOT NULL,
  FLast datetime2(3) NOT NULL);
GO

-- What was called, and what was answered to calls that carry a key: a second call with it gets the same answer.
IF OBJECT_ID('DoorCall') IS NULL
CREATE TABLE DoorCall (
  FID bigint IDENTITY(1,1) NOT NULL PRIMARY KEY,
  FTime datetime2(3) NOT NULL DEFAULT SYSUTCDATETIME(),
  FCaller nvarchar(64) NOT NULL,
  FUserID int NOT NULL,                                    -- t_User
  FOperation nvarchar(80) NOT NULL,
  FOrders nvarchar(4000) NOT NULL DEFAULT '',
  FKey binary(32) NULL,                                    -- SHA-256 of the caller's key
  FHash binary(32) NULL,                                   -- SHA-256 of the request
  FAnswer nvarchar(max) NULL);
GO
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_DoorCall_Key' AND object_id = OBJECT_ID('DoorCall'))
CREATE UNIQUE INDEX IX_DoorCall_Key ON DoorCall (FCaller, FKey) WHERE FKey IS NOT NULL;
GO
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_DoorCall_Time' AND object_id = OBJECT_ID('DoorCall'))
CREATE INDEX IX_DoorCall_Time ON DoorCall (FTime);
GO

-- When the servers last did what has to be done from time to time.
IF OBJECT_ID('DoorBeat') IS NULL
CREATE TABLE DoorBeat (
  FID int NOT NULL PRIMARY KEY,
  FTime datetime2(3) NOT NULL);
GO
