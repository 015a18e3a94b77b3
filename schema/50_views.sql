-- Views through which the order list reaches tables of other modules. Plain selects on one table, so that joining one
-- costs a lookup in that table's key.

IF OBJECT_ID('vw_Web2ERPOrdersRefund') IS NOT NULL DROP VIEW vw_Web2ERPOrdersRefund
GO
CREATE VIEW vw_Web2ERPOrdersRefund AS
SELECT FID, FRefundStatus, FIsShowWaitVerifyTemp FROM IC_Web2ERPOrdersRefund
GO
IF OBJECT_ID('vw_TplWeb2ERPOrders') IS NOT NULL DROP VIEW vw_TplWeb2ERPOrders
GO
CREATE VIEW vw_TplWeb2ERPOrders AS
SELECT FID, FTplOrderStatus FROM IC_TplWeb2ERPOrders
GO
IF OBJECT_ID('vw_Web2ERPOrdersJZ') IS NOT NULL DROP VIEW vw_Web2ERPOrdersJZ
GO
CREATE VIEW vw_Web2ERPOrdersJZ AS
SELECT FID, FIs_jzservice_order FROM IC_Web2ERPOrdersJZ
GO
IF OBJECT_ID('vw_CainiaoShShipWeb2ERPOrders') IS NOT NULL DROP VIEW vw_CainiaoShShipWeb2ERPOrders
GO
CREATE VIEW vw_CainiaoShShipWeb2ERPOrders AS
SELECT FID, FIsShShip FROM IC_CainiaoShShipWeb2ERPOrders
GO
