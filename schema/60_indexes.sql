-- Indexes for a million orders. Keys alone serve every join of the order list; these serve its filters and its order,
-- the search by what stands on a parcel, and the jobs that look for what is left to do.

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_OrderDate' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_OrderDate ON IC_Web2ERPOrders (FOrderDate);
GO

-- The order of the order list.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_PayDate' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_PayDate ON IC_Web2ERPOrders (FSitePayDate, FOrderID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_Status' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_Status ON IC_Web2ERPOrders (FOrderStatus, FSitePayDate);
GO

-- One shop, and the shops that a user may see.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_WebShop' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_WebShop ON IC_Web2ERPOrders (FWebshopID, FSitePayDate);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_Carrier' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_Carrier ON IC_Web2ERPOrders (FLogisticsID, FSitePayDate);
GO

-- The scanner's searches: waybill or unique code.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_Waybill' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_Waybill ON IC_Web2ERPOrders (FLogisticsOrder);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_UniqueCode' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_UniqueCode ON IC_Web2ERPOrders (FUniqueCode);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_OrderID' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_OrderID ON IC_Web2ERPOrders (FOrderID);
GO

-- Closed and manual orders that are not marked as uploaded yet.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_Upload' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_Upload ON IC_Web2ERPOrders (FUpLoadStatus, FTransactionStatus, FOrderType);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrdersEntry_Order' AND object_id = OBJECT_ID('IC_Web2ERPOrdersEntry'))
CREATE INDEX IX_Web2ERPOrdersEntry_Order ON IC_Web2ERPOrdersEntry (FID, FIndex);
GO

-- Lines of one web-shop order that was split.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrdersEntry_SiteOrder' AND object_id = OBJECT_ID('IC_Web2ERPOrdersEntry'))
CREATE INDEX IX_Web2ERPOrdersEntry_SiteOrder ON IC_Web2ERPOrdersEntry (FSiteOrderID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrdersEntry_Upload' AND object_id = OBJECT_ID('IC_Web2ERPOrdersEntry'))
CREATE INDEX IX_Web2ERPOrdersEntry_Upload ON IC_Web2ERPOrdersEntry (FUpLoadStatus, FID);
GO

-- Lines that their shop closed.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrdersEntry_Status' AND object_id = OBJECT_ID('IC_Web2ERPOrdersEntry'))
CREATE INDEX IX_Web2ERPOrdersEntry_Status ON IC_Web2ERPOrdersEntry (FStatus, FID);
GO

-- Where an order stands, for counts over many keys.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_State' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_State ON IC_Web2ERPOrders (FID)
  INCLUDE (FOrderStatus, FCheckStatus, FUpLoadStatus, FWebshopID);
GO

-- The list of locked orders.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrdersEx_Lock' AND object_id = OBJECT_ID('IC_Web2ERPOrdersEx'))
CREATE INDEX IX_Web2ERPOrdersEx_Lock ON IC_Web2ERPOrdersEx (FIsLock, FLockStatus);
GO

-- The last lot number of a month.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrdersEx_Lot' AND object_id = OBJECT_ID('IC_Web2ERPOrdersEx'))
CREATE INDEX IX_Web2ERPOrdersEx_Lot ON IC_Web2ERPOrdersEx (FLotNumber);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_StockBillOrdersStatus_Status' AND object_id = OBJECT_ID('IC_StockBillOrdersStatus'))
CREATE INDEX IX_StockBillOrdersStatus_Status ON IC_StockBillOrdersStatus (FStockBillStatus);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_WebOrder_OID' AND object_id = OBJECT_ID('IC_WebOrder'))
CREATE INDEX IX_WebOrder_OID ON IC_WebOrder (FOID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_TradeLog_Order' AND object_id = OBJECT_ID('IC_TradeLog'))
CREATE INDEX IX_TradeLog_Order ON IC_TradeLog (FOrderFID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_TradeFieldLog_Order' AND object_id = OBJECT_ID('IC_TradeFieldLog'))
CREATE INDEX IX_TradeFieldLog_Order ON IC_TradeFieldLog (FOrderFID);
GO

-- Most switches are read without their category.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_SystemProfile_Key' AND object_id = OBJECT_ID('t_SystemProfile'))
CREATE INDEX IX_SystemProfile_Key ON t_SystemProfile (FKey);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_SubMessage_Type' AND object_id = OBJECT_ID('t_SubMessage'))
CREATE INDEX IX_SubMessage_Type ON t_SubMessage (FTypeID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_ICItem_Number' AND object_id = OBJECT_ID('t_ICItem'))
CREATE INDEX IX_ICItem_Number ON t_ICItem (FNumber);
GO

-- Pickers are joined by their code; two with one code would double an order.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Emp_Number' AND object_id = OBJECT_ID('t_Emp'))
CREATE UNIQUE INDEX IX_Emp_Number ON t_Emp (FNumber);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_WebshopToStorage_WebShop' AND object_id = OBJECT_ID('IC_WebshopToStorage'))
CREATE UNIQUE INDEX IX_WebshopToStorage_WebShop ON IC_WebshopToStorage (FWebShopID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Area_Parent' AND object_id = OBJECT_ID('IC_Area'))
CREATE INDEX IX_Area_Parent ON IC_Area (FParentID);
GO

-- The orders of a cost invoice.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_FeeBill' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_FeeBill ON IC_Web2ERPOrders (FFeeBillNO)
  INCLUDE (FLogisticsCost, FWebshopID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Trade_TID' AND object_id = OBJECT_ID('IC_Trade'))
CREATE INDEX IX_Trade_TID ON IC_Trade (FTID);
GO

-- Which rows of a task are there already.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_UploadWebOrderIndicator_Task' AND object_id = OBJECT_ID('IC_UploadWebOrderIndicator'))
CREATE INDEX IX_UploadWebOrderIndicator_Task ON IC_UploadWebOrderIndicator (FTaskID, FID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_UploadWebOrderTaskFlow_User' AND object_id = OBJECT_ID('IC_UploadWebOrderTaskFlow'))
CREATE INDEX IX_UploadWebOrderTaskFlow_User ON IC_UploadWebOrderTaskFlow (FUserName, FUpStatus);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_goodstomateriel_Materiel' AND object_id = OBJECT_ID('ic_goodstomateriel'))
CREATE INDEX IX_goodstomateriel_Materiel ON ic_goodstomateriel (FMaterielCode);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_WebtplToStorage_Stock' AND object_id = OBJECT_ID('IC_WebtplToStorage'))
CREATE INDEX IX_WebtplToStorage_Stock ON IC_WebtplToStorage (FStockID);
GO

-- A task by its own key, and by what it is for.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_TPLTaskFlow_TaskId' AND object_id = OBJECT_ID('TPLTaskFlow'))
CREATE INDEX IX_TPLTaskFlow_TaskId ON TPLTaskFlow (FTaskId);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_TPLTaskFlow_Warehouse' AND object_id = OBJECT_ID('TPLTaskFlow'))
CREATE INDEX IX_TPLTaskFlow_Warehouse ON TPLTaskFlow (FTaskType, FWebTplType, FWebTplID);
GO

-- A purchase order is looked for by its number.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_POOrder_BillNo' AND object_id = OBJECT_ID('POOrder'))
CREATE INDEX IX_POOrder_BillNo ON POOrder (FBillNo);
GO

-- The stock bills of a web-shop order, and their invoices.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_ICStockBillEntry_Source' AND object_id = OBJECT_ID('ICStockBillEntry'))
CREATE INDEX IX_ICStockBillEntry_Source ON ICStockBillEntry (FSourceTranType, FSourceInterId);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_ICSaleEntry_Source' AND object_id = OBJECT_ID('ICSaleEntry'))
CREATE INDEX IX_ICSaleEntry_Source ON ICSaleEntry (FSourceInterId, FSourceEntryID);
GO

-- Who did what when: for each person one range an hour or a day. The shop says who may see the order.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_Picked' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_Picked ON IC_Web2ERPOrders (FPickMan, FPickDate) INCLUDE (FWebshopID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_Checked' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_Checked ON IC_Web2ERPOrders
  (FPickingGoodMan, FPIckingGoodsStatus, FOrderPickingDate) INCLUDE (FWebshopID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_Sender' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_Sender ON IC_Web2ERPOrders (FShippingMan, FSendDate) INCLUDE (FWebshopID);
GO

-- What carriers took in some days, without a look at the orders themselves.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_Sent' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_Sent ON IC_Web2ERPOrders
  (FSendDate) INCLUDE (FLogisticsID, FWeight, FLogisticsCost, FWebshopID);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_TradeLog_Work' AND object_id = OBJECT_ID('IC_TradeLog'))
CREATE INDEX IX_TradeLog_Work ON IC_TradeLog (FOPCode, FOPUserID, FOPTime) INCLUDE (FOrderFID);
GO

-- The logs, the latest first.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_TradeLog_Time' AND object_id = OBJECT_ID('IC_TradeLog'))
CREATE INDEX IX_TradeLog_Time ON IC_TradeLog (FOPTime);
GO

IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_TradeFieldLog_Time' AND object_id = OBJECT_ID('IC_TradeFieldLog'))
CREATE INDEX IX_TradeFieldLog_Time ON IC_TradeFieldLog (FOPTime);
GO

-- What is delivered and not reported yet.
IF NOT EXISTS (SELECT 1 FROM sys.indexes
               WHERE name = 'IX_Web2ERPOrders_Report' AND object_id = OBJECT_ID('IC_Web2ERPOrders'))
CREATE INDEX IX_Web2ERPOrders_Report ON IC_Web2ERPOrders (FUpLoadStatus, FOrderStatus)
  INCLUDE (FReasonsForFailure, FWebshopID);
GO
