-- Web-shop orders: header, lines and their extensions.

-- Order header, one row for each order as the warehouse ships it.
IF OBJECT_ID('IC_Web2ERPOrders') IS NULL
CREATE TABLE IC_Web2ERPOrders (
  FID int NOT NULL PRIMARY KEY,
  FOrderID nvarchar(50) NOT NULL DEFAULT '',               -- the ERP's own order number
  FSiteOrderID nvarchar(255) NOT NULL DEFAULT '',          -- the web shop's order number
  FUniqueCode decimal(23,0) NULL,                          -- printed on the parcel as a bar code, 20 to 23 digits
  FOrderType int NOT NULL DEFAULT 0,                       -- t_SubMessage; 38112 manual, never uploaded
  FOrderDate datetime NULL,
  FSitePayDate datetime NULL,                              -- when the buyer paid
  FOrderFlag int NOT NULL DEFAULT 0,                       -- the shop's coloured flag, 0 to 5
  FTradeFrom nvarchar(50) NOT NULL DEFAULT '',             -- kind of device the order was placed on
  FWebshopID int NOT NULL DEFAULT 0,
  FMergeStatus int NOT NULL DEFAULT 0,                     -- 1 = several web-shop orders in one parcel
  -- Buyer and address
  FBuyerNick nvarchar(100) NOT NULL DEFAULT '',
  FBuyerName nvarchar(100) NOT NULL DEFAULT '',
  FBuyerEMail nvarchar(100) NOT NULL DEFAULT '',
  FBuyerPayMode nvarchar(50) NOT NULL DEFAULT '',
  FBuyerMessage nvarchar(1000) NOT NULL DEFAULT '',
  FSellerMessage nvarchar(1000) NOT NULL DEFAULT '',
  FConsignee nvarchar(100) NOT NULL DEFAULT '',
  FTelephone nvarchar(50) NOT NULL DEFAULT '',
  FMobile nvarchar(50) NOT NULL DEFAULT '',
  FZipCode nvarchar(20) NOT NULL DEFAULT '',
  FDeliveryCountry int NOT NULL DEFAULT 0,                 -- this and the next three: IC_Area
  FDeliveryProvince int NOT NULL DEFAULT 0,
  FDeliveryCity int NOT NULL DEFAULT 0,
  FDeliveryDistrict int NOT NULL DEFAULT 0,
  FDeliveryAddress nvarchar(500) NOT NULL DEFAULT '',
  -- Money, in the order's currency
  FCurrencyID int NOT NULL DEFAULT 1,
  FAmount decimal(14,4) NOT NULL DEFAULT 0,
  FDiscountFee decimal(14,4) NOT NULL DEFAULT 0,           -- sum of the lines' discounts
  FBillDiscountFee decimal(14,4) NOT NULL DEFAULT 0,       -- discount on the whole order
  FTotalFreight decimal(14,4) NOT NULL DEFAULT 0,          -- freight that the buyer pays
  FInvoiceStatus int NOT NULL DEFAULT 0,                   -- 1 = the buyer has an invoice
  FInvoiceName nvarchar(255) NOT NULL DEFAULT '',
  FInnerInvoice int NOT NULL DEFAULT 0,                    -- 1 = covered by an internal invoice
  FFeeBillNO nvarchar(50) NOT NULL DEFAULT '',             -- ICExpenses.FinterID as text, '' = none
  -- State
  FOrderStatus int NOT NULL DEFAULT 2,                     -- 2 to be picked, 6 to be delivered, 14 delivered
  FTransactionType int NOT NULL DEFAULT 0,                 -- t_SubMessage
  FTransactionStatus int NOT NULL DEFAULT 0,               -- t_SubMessage; 38193 uploaded, 38195 closed
  FSendType int NOT NULL DEFAULT 0,                        -- t_SubMessage; 38132 sent offline
  FCheckStatus int NOT NULL DEFAULT 0,                     -- 1 = checked by FChkMan
  FChkMan int NOT NULL DEFAULT 0,                          -- t_User
  FChkDate datetime NULL,
  FBiller int NOT NULL DEFAULT 0,                          -- t_User who made the order
  FEmpID int NOT NULL DEFAULT 0,                           -- t_Emp who sold it
  -- Picking
  FPickMan nvarchar(50) NOT NULL DEFAULT '0',              -- t_Emp.FNumber of the picker, '0' = none
  FPickDate datetime NULL,
  FPickRem nvarchar(500) NOT NULL DEFAULT '',
  FPIckingGoodsStatus int NOT NULL DEFAULT 0,              -- 1 = the picking check was passed
  FPickingGoodMan int NOT NULL DEFAULT 0,                  -- who did the picking check
  FOrderPickingDate datetime NULL,                         -- when
  -- Weighing and delivery
  FLogisticsID int NOT NULL DEFAULT 0,                     -- carrier, IC_Logistics
  FLogisticsOrder nvarchar(50) NOT NULL DEFAULT '',        -- waybill number
  FEMSorderType int NOT NULL DEFAULT 0,                    -- kind of waybill at the postal carrier
  FShippingType int NOT NULL DEFAULT 0,                    -- t_SubMessage
  FWeight decimal(14,4) NOT NULL DEFAULT 0,                -- kg
  FLogisticsCost decimal(14,4) NOT NULL DEFAULT 0,         -- what the carrier takes
  FWeighttingStatus int NOT NULL DEFAULT 0,                -- 1 = weighed
  FWeighttingMan int NOT NULL DEFAULT 0,
  FShippingMan int NOT NULL DEFAULT 0,                     -- t_User who delivered, 0 = none
  FShippingRem nvarchar(1000) NOT NULL DEFAULT '',         -- written by the warehouse on delivery
  FDeliveryRemark nvarchar(1000) NOT NULL DEFAULT '',      -- wishes for the delivery
  FSendDate datetime NULL,                                 -- delivered by the warehouse
  FOnlineSendDate datetime NULL,                           -- delivered as the web shop knows it
  -- Upload to the web shop
  FUpLoadStatus int NOT NULL DEFAULT 0,                    -- 0 not, 1 done or not needed, 2 failed, 3 under way
  FReasonsForFailure nvarchar(1000) NOT NULL DEFAULT '');
GO

-- When the buyer wants the parcel, in the shop's words.
IF COL_LENGTH('IC_Web2ERPOrders', 'FDeliveryTime') IS NULL
ALTER TABLE IC_Web2ERPOrders ADD FDeliveryTime nvarchar(100) NULL;
GO

-- How often an order was printed, and whether its address was changed here after the import.
IF COL_LENGTH('IC_Web2ERPOrders', 'FPrintPickCount') IS NULL
ALTER TABLE IC_Web2ERPOrders ADD FPrintPickCount int NOT NULL DEFAULT 0;  -- pick list
GO
IF COL_LENGTH('IC_Web2ERPOrders', 'FPrintSendCount') IS NULL
ALTER TABLE IC_Web2ERPOrders ADD FPrintSendCount int NOT NULL DEFAULT 0;  -- delivery note
GO
IF COL_LENGTH('IC_Web2ERPOrders', 'FPrintExpressCount') IS NULL
ALTER TABLE IC_Web2ERPOrders ADD FPrintExpressCount int NOT NULL DEFAULT 0;  -- waybill
GO
IF COL_LENGTH('IC_Web2ERPOrders', 'FPrintSendList') IS NULL
ALTER TABLE IC_Web2ERPOrders ADD FPrintSendList int NOT NULL DEFAULT 0;  -- delivery list
GO
IF COL_LENGTH('IC_Web2ERPOrders', 'fisLocalChangeAddr') IS NULL
ALTER TABLE IC_Web2ERPOrders ADD fisLocalChangeAddr int NOT NULL DEFAULT 0;  -- 1 = changed
GO

-- t_User who printed the waybill last, 0 = none.
IF COL_LENGTH('IC_Web2ERPOrders', 'FPrintExpressUserID') IS NULL
ALTER TABLE IC_Web2ERPOrders ADD FPrintExpressUserID int NOT NULL DEFAULT 0;
GO

-- Order line.
IF OBJECT_ID('IC_Web2ERPOrdersEntry') IS NULL
CREATE TABLE IC_Web2ERPOrdersEntry (
  FEntryID int NOT NULL PRIMARY KEY,
  FID int NOT NULL,
  FIndex int NOT NULL DEFAULT 1,                           -- line number in the order
  FSiteOrderID nvarchar(50) NOT NULL DEFAULT '',           -- the web shop's order that the line came from
  FChildOrderID nvarchar(50) NOT NULL DEFAULT '',          -- the marketplace's number of the line, ic_weborder.FOID
  FItemID int NOT NULL DEFAULT 0,
  FNumID nvarchar(50) NOT NULL DEFAULT '',                 -- the web shop's number of the goods
  FSKUID nvarchar(50) NOT NULL DEFAULT '',
  FOuterID nvarchar(80) NOT NULL DEFAULT '',               -- the merchant's code that the web shop keeps for the goods
  FOnlineTitle nvarchar(255) NOT NULL DEFAULT '',
  FBarCode nvarchar(50) NOT NULL DEFAULT '',
  FAttrCode int NOT NULL DEFAULT 0,                        -- t_AuxItem, such as a colour
  FAttrType nvarchar(80) NOT NULL DEFAULT '',              -- name of its category
  FUnitID int NOT NULL DEFAULT 0,
  FQuantity decimal(14,4) NOT NULL DEFAULT 0,
  FPrice decimal(14,4) NOT NULL DEFAULT 0,                 -- with tax
  FAmount decimal(14,4) NOT NULL DEFAULT 0,                -- with tax
  FDiscountFee decimal(14,4) NOT NULL DEFAULT 0,
  FEntryBillDiscountFee decimal(14,4) NOT NULL DEFAULT 0,  -- the line's share of FBillDiscountFee
  FAfterDiscountAmount decimal(14,4) NOT NULL DEFAULT 0,
  FBuyerFreight decimal(14,4) NOT NULL DEFAULT 0,
  FIsFree int NOT NULL DEFAULT 0,                          -- 1 = gift
  FMealID nvarchar(50) NULL,                               -- set meal that the line is part of, '0' = none
  FMealName nvarchar(255) NOT NULL DEFAULT '',
  FPackagedGoods int NOT NULL DEFAULT 0,                   -- t_ICItem of the package that the line was unpacked from
  FPromotionID int NOT NULL DEFAULT 0,
  FStockID int NOT NULL DEFAULT 0,                         -- delivery warehouse
  FSPID int NOT NULL DEFAULT 0,                            -- stock place in it
  FBatchNo nvarchar(200) NULL DEFAULT '',
  FRealStock decimal(14,4) NOT NULL DEFAULT 0,
  FOutStockQuantity decimal(14,4) NOT NULL DEFAULT 0,
  FOutStockAmount decimal(14,4) NOT NULL DEFAULT 0,
  FAuxQtyInvoice decimal(14,4) NOT NULL DEFAULT 0,         -- invoiced quantity
  FInvoiceAmount decimal(14,4) NOT NULL DEFAULT 0,
  FStatus nvarchar(50) NOT NULL DEFAULT '',                -- the web shop's state, such as TRADE_CLOSED
  FRowClosed int NOT NULL DEFAULT 0,                       -- 1 = closed by hand
  FIsRowClose int NOT NULL DEFAULT 0,                      -- 1 = closed by delivery, return or exchange
  FUpLoadStatus int NOT NULL DEFAULT 0,                    -- as the header's
  FIsShShip int NOT NULL DEFAULT 0,                        -- 1 = forwarded by the logistics network itself
  FRefundStatus int NOT NULL DEFAULT 0,                    -- 1 = refund requested
  FRefundFID int NOT NULL DEFAULT 0,                       -- IC_RefundInfo
  FReceiptQty decimal(14,4) NOT NULL DEFAULT 0,            -- returned goods signed for
  FServiceType int NOT NULL DEFAULT 0,                     -- 1 refund, 2 refund and return, 3 exchange
  FServiceSource int NOT NULL DEFAULT 0,                   -- 1 online, 2 offline
  FServiceStatus int NOT NULL DEFAULT 0);                  -- t_SubMessage of type 843
GO

-- Header extension; an order without a row has the default of every column.
IF OBJECT_ID('IC_Web2ERPOrdersEx') IS NULL
CREATE TABLE IC_Web2ERPOrdersEx (
  FID int NOT NULL PRIMARY KEY,
  FOrderID nvarchar(50) NULL,
  FLotNumber nvarchar(50) NULL,                            -- print run that the order was in
  FSerialNumber nvarchar(20) NULL,                         -- place in that run
  FCreateDate datetime NULL DEFAULT GETDATE());
GO

-- Columns that came with later versions.
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FAddressReachable') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FAddressReachable int NULL;  -- 1 served, 4 or none to be checked, 5 exempt, other no
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FLogisticsState') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FLogisticsState int NULL;  -- IC_LogisticsTraceState
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FParcelQuantity') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FParcelQuantity int NULL;
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FInsuredValue') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FInsuredValue decimal(14,4) NULL;
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FItemSummary') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FItemSummary nvarchar(1000) NULL;
GO
-- Outside warehouse: '', '0' not submitted, '1' may be cancelled, '2' submitted again, '3' is submitted.
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FTplStatus') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FTplStatus nvarchar(10) NULL;
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FTplFail') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FTplFail nvarchar(1000) NULL;
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FTplOrderID') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FTplOrderID nvarchar(50) NULL;
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FTpName') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FTpName nvarchar(100) NULL;
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FIsLock') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FIsLock int NULL;  -- 1 = locked; such orders have a list of their own
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FLockStatus') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FLockStatus int NULL;  -- 1 lock asked for, 2 locked
GO
IF COL_LENGTH('IC_Web2ERPOrdersEx', 'FLockReason') IS NULL
ALTER TABLE IC_Web2ERPOrdersEx ADD FLockReason nvarchar(500) NULL;
GO

-- Line extension.
IF OBJECT_ID('IC_Web2ERPOrdersEntryEx') IS NULL
CREATE TABLE IC_Web2ERPOrdersEntryEx (
  FEntryID int NOT NULL PRIMARY KEY,
  FTplRemark nvarchar(500) NULL);                          -- serial numbers at the outside warehouse
GO
