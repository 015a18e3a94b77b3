-- Views through which the order list reaches tables of other modules. Plain selects on one table, so that joining one
-- costs a lookup in that table's key.

CREATE OR ALTER VIEW vw_Web2ERPOrdersRefund AS
SELECT FID, FRefundStatus, FIsShowWaitVerifyTemp FROM IC_Web2ERPOrdersRefund
GO
CREATE OR ALTER VIEW vw_TplWeb2ERPOrders AS
SELECT FID, FTplOrderStatus FROM IC_TplWeb2ERPOrders
GO
CREATE OR ALTER VIEW vw_Web2ERPOrdersJZ AS
SELECT FID, FIs_jzservice_order FROM IC_Web2ERPOrdersJZ
GO
CREATE OR ALTER VIEW vw_CainiaoShShipWeb2ERPOrders AS
SELECT FID, FIsShShip FROM IC_CainiaoShShipWeb2ERPOrders
GO
