#include "automation/binding.h"
#include "automation/keys.h"

namespace tessarlorn {
namespace {

using enum ValueType;

constexpr std::array kConfirmBill = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("FPickManNumber", kString, "", "The picker's employee code"),
    Optional("FPickRem", kString, "", "Picking remark"),
};
constexpr std::array kPickingGoods = {
    ConnectionKey("sProps"),
    Optional("FLogisticsOrder", kString, "",
             "The parcel's logistics number or, all in digits, the order's unique code"),
    Optional("FPickingGoodsStatus", kLong, "0", "1 = check passed, 0 = not passed"),
    Optional("FPickingGoodMan", kLong, "", "Id of the user who checked"),
    Optional("FPickingGoodsstatus", kLong, "", "With a small s: 1 stores the time of the check as well"),
};
constexpr std::array kPickingMark = {
    ConnectionKey("sDsn"),
    kOrdersKey,
    Optional("UserId", kLong, "", "Id of the user who checked"),
};
constexpr std::array kOrders = {ConnectionKey("sDSN"), kOrdersKey};
constexpr std::array kStepBack = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("UpdateFlag", kBoolean, "False", "True = from delivered to 6, False = to 2, waiting for picking"),
};
constexpr std::array kModifyCost = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("LogisticsCosts", kDouble, "", "Logistics cost in the order's currency; an error when it is no number"),
};
constexpr std::array kNumberAndWeight = {
    Optional("FLogisticsOrder", kString, "", "Logistics number"),
    Optional("FWeight", kString, "0", "Weight in kg; the number with which the text begins"),
    Optional("FLogisticsCost", kString, "0", "Logistics cost; the number with which the text begins"),
    Optional("FID", kLong, "", "Order key"),
};
constexpr std::array kLogWeight = {
    Optional("FWeight", kDouble, "", "Weight in kg"),
    Optional("FLogisticsCost", kDouble, "", "Logistics cost in the order's currency"),
    Optional("FWeighttingMan", kLong, "", "Id of the user who weighed"),
    Optional("FWeighttingStatus", kLong, "", "1 = weighed"),
    Optional("FID", kLong, "", "Order key"),
};
constexpr std::array kWeightStatus = {
    kOrdersKey,
    Optional("UserID", kLong, "", "Id of the user who weighed"),
    Mandatory("AsyncCreate", kBoolean, "True queues the orders' stock bills as well"),
};
constexpr std::array kUploadStatus = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("IsOfflineUpLoad", kLong, "0", "1 marks the orders as sent offline as well"),
};
constexpr std::array kFailure = {
    Optional("FailureFID", kLong, "0", "Order key"),
    Optional("FailureInfo", kString, "", "The web shop's reason; single quotes are removed"),
};
constexpr std::array kUploadFailure = {
    ConnectionKey("sDSN"),
    Key{.name = "ErrInfo",
        .type = kVector,
        .need = Need::kMandatory,
        .fallback = "",
        .help = "One Dictionary for each failed order",
        .item_keys = kFailure},
};
constexpr std::array kOrderRemark = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Mandatory("FSellerMessage", kString, "The remark"),
    Optional("Mode", kLong, "0", "0 replaces the old remark, any other number adds the new one behind it"),
};
constexpr std::array kWishes = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Mandatory("FDeliveryRemark", kString, "The wishes"),
};
constexpr std::array kDeliveryRemark = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Mandatory("FShippingRem", kString, "The remark"),
    Optional("Mode", kLong, "0", "1 adds the remark behind the old one, anything else replaces it"),
};
constexpr std::array kAddress = {
    ConnectionKey("sDSN"),
    Mandatory("FID", kLong, "Order key"),
    Optional("FConsignee", kString, "", "Who receives the parcel"),
    Optional("FZipCode", kString, "", "Postal code"),
    Optional("FTelephone", kString, "", "Telephone number"),
    Optional("FMobile", kString, "", "Mobile number"),
    Optional("FDeliveryProvince", kLong, "", "Province, its id"),
    Optional("FDeliveryCity", kLong, "", "City, its id"),
    Optional("FDeliveryDistrict", kLong, "", "District, its id"),
    Optional("FDeliveryAddress", kString, "", "Street and house"),
};
constexpr std::array kChangeStock = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Mandatory("FStockID", kLong, "The new warehouse, its id"),
};
constexpr std::array kCostInvoice = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("FCostInvoiceInterID", kLong, "",
             "Key of the cost invoice, a number; without one the orders are unlinked"),
};

constexpr std::array kBatch = {
    Optional("FBatchNo", kString, "", "Batch number; single quotes are removed, here and below"),
    Optional("FStockID", kLong, "", "Warehouse; an absent one is stored as none, like all of these"),
    Optional("SPID", kLong, "", "Stock place"),
    Optional("FEntryID", kLong, "0", "Line key"),
};
constexpr std::array kPrinted = {Optional("FID", kLong, "", "Order key; the first value counts, whatever its name")};

constexpr std::array kOperations = {
    Bind<&clsSaveData::TransMode>(
        "TransMode", {},
        "The transaction mode that the class reports to its container: 2, each call runs in a transaction. Never "
        "raises."),
    Bind<&clsSaveData::WriteSaveOrderLog>(
        "WriteSaveOrderLog", {{"FID"}, {"EntryID"}, {"FieldName"}, {"Value"}},
        "Records a new field value of an order (EntryID 0) or of one of its lines, on the session that an earlier "
        "operation of the same instance opened. Answers what the web-order component answers; its errors come out "
        "unchanged, 429 when there is none, 91 without such a session, as in a single call by the command."),
    Bind<&clsSaveData::WriteOPLog>(
        "WriteOPLog", {{"sFID"}, {"OPCode"}, {"ItemID"}, {"FOldValue"}, {"FNewValue"}},
        "Records an operation on the orders of the list sFID, with acting user, client address and local time, on "
        "the session that an earlier operation of the same instance opened. ItemID is 0 for whole orders. Answers "
        "what the web-order component answers; its errors come out unchanged, 429 when there is none, 91 without "
        "such a session, as in a single call by the command."),
    Bind<&clsSaveData::IsLogEnable>(
        "IsLogEnable", {{"OPCode"}},
        "Whether operations of this code are to be logged, asked on the session that an earlier operation of the "
        "same instance opened. Errors of the web-order component come out unchanged, 429 when there is none, 91 "
        "without such a session, as in a single call by the command."),
    Bind<&clsSaveData::ConfirmBill>(
        "ConfirmBill", {{"dctPara", kConfirmBill}},
        "Assigns a picker and sets orders waiting for delivery (status 6), whatever their status was. False, with "
        "nothing done, without sDSN or FID; True when the update ran, also when no order matched. Raises with "
        "Source ConfirmBill."),
    Bind<&clsSaveData::SavePickingGoods>(
        "SavePickingGoods", {{"dctPara", kPickingGoods}},
        "Stores the result of the picking check of one parcel, found by its logistics number or unique code; logged "
        "as 3003. False, with nothing done, without sProps; True when the update ran, also when no order matched. "
        "Raises with Source SavePickingGoods."),
    Bind<&clsSaveData::MarkPickingGoodsStatus>(
        "MarkPickingGoodsStatus", {{"dctPara", kPickingMark}},
        "Marks the picking check of orders as passed; orders that are marked already stay as they are. Logged as "
        "3014, always. False, with nothing done, without sDsn or FID. Raises with Source MarkPickingGoodsStatus."),
    Bind<&clsSaveData::ClearPickingGoodsStatus>(
        "ClearPickingGoodsStatus", {{"dctPara", kPickingMark}},
        "Takes the mark of the picking check back; orders without it stay as they are. Logged as 3013 where "
        "enabled. False, with nothing done, without sDsn or FID. Raises with Source ClearPickingGoodsStatus."),
    Bind<&clsSaveData::SaveBatchNo>(
        "SaveBatchNo", {{"sDsn"}, {"vctPara", kBatch}},
        "Stores batch number, warehouse and stock place of each order line of the Vector; batch numbers go to the "
        "field log first. False, with nothing done, without sDsn or entries. Raises with Source SaveBatchNo."),
    Bind<&clsSaveData::SavePrintSerialNumber>(
        "SavePrintSerialNumber", {{"sDsn"}, {"vctOrderInfo", kPrinted}},
        "Gives the orders of a print run a new lot number (year, month and the run's number in the month, as "
        "20261112) and serial numbers from 1, in the order of the Vector. False, with nothing done, without sDsn or "
        "for Nothing; an empty Vector uses up a lot number and is True. Raises with Source SavePrintSerialNumber."),
    Bind<&clsSaveData::GetUniqueCodeIndex>(
        "GetUniqueCodeIndex", {{"dctParam", kOrders}},
        "The unique codes of orders, numbered in the order of FID, five a line: number, -, the code (a longer one "
        "than 20 characters cut to 19 and ..), |. Empty without sDSN or FID. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetUniqueCodeIndex."),
    Bind<&clsSaveData::Delivery>(
        "Delivery", {{"dctPara", kOrders}},
        "Sets orders delivered (status 14) by the acting user and closes their lines, whatever their status was. "
        "False, with nothing done, without sDSN or FID; True when the update ran, also when no order matched. "
        "Raises with Source Delivery, 6 when the user's id is beyond 16 bits."),
    Bind<&clsSaveData::BackToThePreviousStep>(
        "BackToThePreviousStep", {{"dctPara", kStepBack}},
        "Steps orders back, from delivered to waiting for delivery or from there to waiting for picking, whatever "
        "their status was; logged as 3005 where enabled. False, with nothing done, without sDSN or FID. Raises with "
        "Source BackToThePreviousStep."),
    Bind<&clsSaveData::UpdateDeliveryData>(
        "UpdateDeliveryData", {{"sDsn"}, {"sFID"}},
        "Queues the creation of stock bills for the orders of the list sFID, in batches of 150; a queued order is "
        "reset to waiting. True, also for an empty list. Raises with Source "
        "TessarLornPickingAndDelivery.clsSaveData.UpdateDeliveryData, 13 for a key that is no number."),
    Bind<&clsSaveData::ModifyCost>(
        "ModifyCost", {{"dctPara", kModifyCost}},
        "Sets the logistics cost of orders, rounded to two decimals, and records it in their field log. False, with "
        "nothing done, without sDSN or FID. Raises with Source Delivery, 13 when the cost is missing or no number."),
    Bind<&clsSaveData::SetUpLogisticsNumberAndWeight>(
        "SetUpLogisticsNumberAndWeight", {{"sDsn"}, {"vctPara", kNumberAndWeight}},
        "Stores logistics number, weight and cost of each order of the Vector; numbers go to the field log. False "
        "for Nothing, True for an empty Vector, with nothing done. Raises with Source Delivery."),
    Bind<&clsSaveData::SetUpLogisticsNumber>(
        "SetUpLogisticsNumber", {{.name = "sDsn"}, {.name = "dctPara", .any_key = true}},
        "Stores logistics numbers: each key is an order's unique code (FUniqueCode), its value the number. False, "
        "with nothing done, without sDsn or entries. Raises with Source Delivery."),
    Bind<&clsSaveData::SaveLogWeight>(
        "SaveLogWeight", {{"sDsn"}, {"vctPara", kLogWeight}},
        "Stores weight, cost, weigher and weighing status of each order of the Vector; each is logged as 3008 where "
        "enabled. False for Nothing, True for an empty Vector, with nothing done. Raises with Source SaveLogWeight."),
    Bind<&clsSaveData::UpdateLogisticsWeightStatus>(
        "UpdateLogisticsWeightStatus", {{"sDsn"}, {"dctPara", kWeightStatus}},
        "Marks orders as weighed and, on request, queues the creation of their stock bills in batches of 150. "
        "False, with nothing done, without FID or AsyncCreate. Raises with Source "
        "TessarLornPickingAndDelivery.clsSaveData.UpdateLogisticsWeightStatus, 13 for a key that is no number."),
    Bind<&clsSaveData::UploadStatus>(
        "UploadStatus", {{"dctPara", kUploadStatus}},
        "Marks orders as uploaded to their web shop and clears the reason of an earlier failure. False, with "
        "nothing done, without sDSN or FID; True when the update ran, also when no order matched. Raises with "
        "Source UploadStatus."),
    Bind<&clsSaveData::UploadStatusFailure>(
        "UploadStatusFailure", {{"dctPara", kUploadFailure}},
        "Marks orders as not uploaded, each with the web shop's reason. False, with nothing done, without sDSN or "
        "ErrInfo; True for an empty ErrInfo. Raises with Source UploadStatusFailure, 13 when ErrInfo is no Vector "
        "of Dictionaries."),
    Bind<&clsSaveData::UpLoadStatusForManualAndClosed>(
        "UpLoadStatusForManualAndClosed", {{"sDsn"}},
        "Marks every manual order and every closed transaction, with its lines, as uploaded. True, also when there "
        "is none. Raises with Source UpLoadStatusForManualAndClosed."),
    Bind<&clsSaveData::UpdateAddressReachableState>(
        "UpdateAddressReachableState", {{"sDsn"}, {"sFID"}, {"lType"}},
        "Records that carriers serve the addresses of the orders of the list sFID, and remembers each address with "
        "its carrier, in batches of 150; with lType 4 the orders are to be checked again instead. False, with "
        "nothing done, without sDsn or sFID. Raises with Source "
        "TessarLornPickingAndDelivery.clsSaveData.UpdateAddressReachableState."),
    Bind<&clsSaveData::SubMitTplOrderTask>(
        "SubMitTplOrderTask", {{"sDsn"}, {"sFID"}, {"tplType"}, {"sUserName"}, {.name = "sWebTplID", .optional = true}},
        "Queues a task for the orders of the list sFID at an outside warehouse and marks those in state 0 or 2, or "
        "without an extension row, as submitted, in batches of 150; any other state stays. False, with nothing "
        "done, without sDsn or sFID. Raises with Source "
        "TessarLornPickingAndDelivery.clsSaveData.SubMitTplOrderTask."),
    Bind<&clsSaveData::SubMitPorTask>(
        "SubMitPorTask",
        {{"sDsn"}, {"sTaskID"}, {"sInterFID"}, {"tplType"}, {"sStockID"}, {"sUserName"}, {"sFiter"}, {"lTranType"}},
        "Queues a task for the purchase orders (lTranType 71) or sales orders (81) of the list sInterFID and marks "
        "those of their lines as submitted that fulfil the SQL condition sFiter on t1. Always an empty text, which "
        "the command ends with status 1; nothing is done without sDsn or sInterFID. Raises with Source "
        "TessarLornPickingAndDelivery.clsSaveData.SubMitPorTask, also for any other lTranType, whose task stays "
        "only without a transaction."),
    Bind<&clsSaveData::ClearTplFieldInfo>(
        "ClearTplFieldInfo", {{"sDsn"}, {"sBillNo"}},
        "Clears what the purchase order sBillNo and its lines keep of an outside warehouse. True, also when there "
        "is no such order. Raises with Source TessarLornPickingAndDelivery.clsSaveData.ClearTplFieldInfo."),
    Bind<&clsSaveData::DownloadWebTpls>(
        "DownloadWebTpls", {{"sDsn"}, {"lScheme"}},
        "Stores the scheme by which lists of warehouses are downloaded. True, also when the setting has no row and "
        "nothing is stored. Raises with Source TessarLornPickingAndDelivery.clsSaveData.DownloadWebTpls."),
    Bind<&clsSaveData::OrderRemark>(
        "OrderRemark", {{"dctPara", kOrderRemark}},
        "Replaces or extends the seller's remark of orders and records it in their field log. False, with nothing "
        "done, without sDSN, FID or FSellerMessage. Raises with Source OrderRemark, 13 when Mode is no number."),
    Bind<&clsSaveData::DeRemark>(
        "DeRemark", {{"dctPara", kWishes}},
        "Replaces the buyer's wishes for the delivery of orders and records them in their field log. False, with "
        "nothing done, without sDSN, FID or FDeliveryRemark. Raises with Source OrderRemark."),
    Bind<&clsSaveData::DeliveryRemark>(
        "DeliveryRemark", {{"dctPara", kDeliveryRemark}},
        "Replaces or extends the delivery remark of orders and records it in their field log. False, with nothing "
        "done, without sDSN, FID or FShippingRem. Raises with Source OrderRemark."),
    Bind<&clsSaveData::ChangeAddess>(
        "ChangeAddess", {{"dctPara", kAddress}},
        "Stores consignee and address of an order, clears its waybill number and deletes the courier's own waybill; "
        "the change goes to its field log. False, with nothing done, without sDSN or FID; True when the update ran, "
        "also when no order matched. Raises with Source ChangeAddess."),
    Bind<&clsSaveData::ChangeStock>(
        "ChangeStock", {{"dctPara", kChangeStock}},
        "Moves all lines of orders to another warehouse, without a stock place; logged as 2001 where enabled, one "
        "row a line. False, with nothing done, without sDSN, FID or FStockID. Raises with Source ChangeStock."),
    Bind<&clsSaveData::UpdateCostInvoiceStatus>(
        "UpdateCostInvoiceStatus", {{"dctPara", kCostInvoice}},
        "Links orders to the cost invoice that covers them; logged as 3007, always. False, with nothing done, "
        "without sDSN or FID; True when the update ran, also when no order matched. Raises with Source "
        "ChangeAddess."),
    Bind<&clsSaveData::UpdateAfterDeleteBill>(
        "UpdateAfterDeleteBill", {{"sDsn"}, {"sFID"}},
        "Unlinks all orders from the cost invoices of the list sFID. False, with nothing done, without sDsn or "
        "sFID. Raises with Source TessarLornPickingAndDelivery.clsSaveData.UpdateAfterDeleteBill."),
};

}  // namespace

std::span<const Operation> SaveOperations() { return kOperations; }

}  // namespace tessarlorn
