#include <array>

#include "workbench/actions.h"
#include "workbench/history.h"
#include "workbench/keys.h"
#include "workbench/orders.h"
#include "workbench/tables.h"

namespace tessarlorn::workbench {
namespace {

constexpr std::array kOrdersKeys = {
    Optional("tab", ValueType::kString,
             "toBePicked, toBeDelivered, delivered, failedUploads, refunds or locked; none = all orders"),
    Optional("orderedFrom", ValueType::kDate, "Ordered at or after"),
    Optional("orderedTo", ValueType::kDate, "Ordered at or before"),
    Optional("paidFrom", ValueType::kDate, "Paid at or after"),
    Optional("paidTo", ValueType::kDate, "Paid at or before"),
    Optional("sentFrom", ValueType::kDate, "Delivered at or after"),
    Optional("sentTo", ValueType::kDate, "Delivered at or before"),
    Optional("shop", ValueType::kLong, "Web shop, its id"),
    Optional("carrier", ValueType::kLong, "Carrier, its id"),
    Optional("pickedFrom", ValueType::kDate, "Picked at or after"),
    Optional("pickedTo", ValueType::kDate, "Picked at or before"),
    Optional("pickedBy", ValueType::kString, "Code of the employee who picked it"),
    Optional("checkedFrom", ValueType::kDate, "Its picking check was passed at or after"),
    Optional("checkedTo", ValueType::kDate, "Its picking check was passed at or before"),
    Optional("checkedBy", ValueType::kLong, "Key of the user who made the picking check"),
    Optional("weighedFrom", ValueType::kDate, "Weighed at or after; weighings are known where they are logged"),
    Optional("weighedTo", ValueType::kDate, "Weighed at or before"),
    Optional("weighedBy", ValueType::kLong, "Key of the user who weighed it"),
    Optional("sentBy", ValueType::kLong, "Key of the user who delivered it"),
    Optional("warehouse", ValueType::kLong, "Warehouse from which a line is delivered, its id"),
    Optional("orderType", ValueType::kLong, "Order type, its id"),
    Optional("buyer", ValueType::kString, "Part of the buyer's nick or name, or of the consignee's name"),
    Optional("waybill", ValueType::kString, "Part of the waybill number"),
    Optional("text", ValueType::kString, "Part of a remark or of the summary of the articles"),
    Optional("flag", ValueType::kLong, "Flag of the order, 0 to 5"),
    Optional("lot", ValueType::kString, "Print lot"),
    Optional("printedSlip", ValueType::kBoolean, "Whether the delivery note is printed"),
    Optional("printedWaybill", ValueType::kBoolean, "Whether the waybill is printed"),
    Optional("checked", ValueType::kBoolean, "Whether the picking check was passed"),
    Optional("weighed", ValueType::kBoolean, "Whether it is weighed"),
    Optional("upload", ValueType::kLong, "State of the upload: 0 not, 1 done, 2 failed, 3 under way"),
    Optional("reason", ValueType::kString, "Why the upload failed, the whole text"),
    Optional("outside", ValueType::kLong,
             "State at the outside warehouse: 0 not submitted, 1 may be taken back, 2 refused, 3 submitted"),
    Optional("invoice", ValueType::kLong, "Key of the cost invoice that covers it, 0 = none covers it"),
    Optional("fields", ValueType::kVector,
             "Conditions on fields of the order grid, as FWeight>=1.5 or FGiftCardText~birthday: the key of a field, = "
             "~ >= or <=, and a value; ~ finds a part of a text"),
    Optional("sort", ValueType::kString,
             "FID, FOrderID, FOrderDate, FSitePayDate, FSendDate, FAmount, FWeight, FConsignee, FBuyerNick, "
             "FLogisticsOrder or FSerialNumber; none = FSitePayDate"),
    Optional("descending", ValueType::kBoolean, "Whether the last come first"),
    Optional("most", ValueType::kLong, "Most keys, 1 to 100000"),
};
constexpr std::array kRowsKeys = {
    kOrderKeys,
    Optional("locked", ValueType::kBoolean, "Answers the locked ones of them, in place of the others"),
};
constexpr std::array kStateKeys = {kOrderKeys};
constexpr std::array kFindKeys = {
    Mandatory("text", ValueType::kString,
              "A key, order number, web-shop order number, waybill number or unique code; of order and waybill numbers "
              "the beginning is enough"),
};
constexpr std::array kParcelKeys = {
    Mandatory("numbers", ValueType::kVector,
              "Order numbers, web-shop order numbers, waybill numbers, unique codes and keys, as they are written on "
              "parcels and papers; 1 to 500")};
constexpr std::array kHistoryKeys = {Mandatory("order", ValueType::kLong, "Key of an order (FID)")};

constexpr std::array kPrintKeys = {
    Mandatory("document", ValueType::kLong,
              "10143011 pick list, 10143012 delivery note, 10143013 waybill, 10143014 delivery list"),
    kOrderKeys};
constexpr std::array kRetryKeys = {kOrderKeys};

constexpr std::array kKeyColumn = {Column{"FID", ValueType::kLong, "Key of an order"}};
constexpr std::array kStateColumns = {
    Column{"FID", ValueType::kLong, "Key of an order"},
    Column{"FOrderStatus", ValueType::kLong, "2 to be picked, 6 to be delivered, 14 delivered"},
    Column{"FOrderID", ValueType::kString, "Order number"},
};
constexpr std::array kTabColumns = {Column{"FTab", ValueType::kString, "The tab"},
                                    Column{"FOrders", ValueType::kLong, "How many orders stand in it"}};
constexpr std::array kFoundColumns = {
    Column{"FID", ValueType::kLong, "Key of the order"},
    Column{"FOrderID", ValueType::kString, "Order number"},
    Column{"FSiteOrderID", ValueType::kString, "Number of the order in the web shop"},
    Column{"FLogisticsOrder", ValueType::kString, "Waybill number"},
    Column{"FUniqueCode", ValueType::kString, "Unique code, \"\" for none"},
    Column{"FConsignee", ValueType::kString, "Consignee"},
    Column{"FOrderStatus", ValueType::kLong, "2 to be picked, 6 to be delivered, 14 delivered"},
};
constexpr std::array kParcelColumns = {
    Column{"FNumber", ValueType::kString, "The number, as it was asked for"},
    Column{"FID", ValueType::kLong, "Key of an order that has it"},
    Column{"FOrderID", ValueType::kString, "Order number"},
    Column{"FOrderStatus", ValueType::kLong, "2 to be picked, 6 to be delivered, 14 delivered"},
    Column{"FLogisticsOrder", ValueType::kString, "Waybill number"},
    Column{"FWeight", ValueType::kDecimal, "Weight in kg"},
    Column{"FLogisticsCost", ValueType::kDecimal, "What the carrier takes"},
    Column{"FConsignee", ValueType::kString, "Consignee"},
};
constexpr std::array kHistoryColumns = {
    Column{"FTime", ValueType::kDate, "When"},
    Column{"FKind", ValueType::kString, "operation or field"},
    Column{"FName", ValueType::kString, "Code of the operation, or name of the field"},
    Column{"FEntryID", ValueType::kLong, "The line, 0 = the order itself"},
    Column{"FUserName", ValueType::kString, "Who"},
    Column{"FAddress", ValueType::kString, "Address of the client, \"\" for a field"},
    Column{"FOldValue", ValueType::kString, "Value before, \"\" for a field"},
    Column{"FNewValue", ValueType::kString, "Value since"},
};
constexpr std::array kChoiceColumns = {
    Column{"FKind", ValueType::kString, "shop, carrier, warehouse, employee, user or orderType"},
    Column{"FID", ValueType::kLong, "Its id"},
    Column{"FNumber", ValueType::kString, "Its code, \"\" for none"},
    Column{"FName", ValueType::kString, "Its name in the asker's language"},
};

/// Whoever picks, packs or delivers prints.
constexpr std::array<std::string_view, 3> kPrintRights = {"SavePrintSerialNumber", "SaveLogWeight", "Delivery"};
constexpr std::array<std::string_view, 1> kUploadRight = {"UploadStatus"};

constexpr std::array kOrderQuestions = {
    Question{.name = "tabs",
             .help = "How many orders stand in each tab of the list.",
             .keys = {},
             .columns = kTabColumns,
             .ask = AskTabs},
    Question{.name = "orders",
             .help = "The keys of the orders that match everything given, in the order asked for.",
             .keys = kOrdersKeys,
             .columns = kKeyColumn,
             .ask = AskOrders},
    Question{.name = "rows",
             .help =
                 "The rows of the order list for some orders, in no certain order. Locked orders have a list of their "
                 "own.",
             .keys = kRowsKeys,
             .columns = {},
             .call = CallForRows},
    Question{.name = "states",
             .help = "Where some orders stand. Those that are not there, or not for the asker, are left out.",
             .keys = kStateKeys,
             .columns = kStateColumns,
             .ask = AskStates},
    Question{.name = "find",
             .help = "The orders that have a number, the exact ones first, then the latest; at most 20.",
             .keys = kFindKeys,
             .columns = kFoundColumns,
             .ask = AskFind},
    Question{.name = "parcels",
             .help =
                 "The orders that have one of some numbers. An order's key counts where no other number is the same. A "
                 "number of several orders answers a row for each.",
             .keys = kParcelKeys,
             .columns = kParcelColumns,
             .ask = AskParcels},
    Question{.name = "history",
             .help = "What was done to an order, the latest first; at most 1,000 entries.",
             .keys = kHistoryKeys,
             .columns = kHistoryColumns,
             .ask = AskHistory},
    Question{.name = "choices",
             .help = "Web shops, carriers, warehouses, employees, users and order types, by kind and code.",
             .keys = {},
             .columns = kChoiceColumns,
             .ask = AskChoices},
    Question{
        .name = "countPrints",
        .help = "Counts one more print of a document for each of the orders, and marks it as printed. Orders that were "
                "printed as often as is allowed are left out.",
        .keys = kPrintKeys,
        .columns = kKeyColumn,
        .ask = CountPrints,
        .rights = kPrintRights,
        .writes = true},
    Question{.name = "retryUploads",
             .help =
                 "Sets orders whose upload failed back to not uploaded, so that the program that uploads takes them "
                 "again.",
             .keys = kRetryKeys,
             .columns = kKeyColumn,
             .ask = RetryUploads,
             .rights = kUploadRight,
             .writes = true},
};

}  // namespace

std::span<const Question> OrderQuestions() { return kOrderQuestions; }

}  // namespace tessarlorn::workbench
