#include <array>

#include "workbench/keys.h"
#include "workbench/office.h"
#include "workbench/tables.h"

namespace tessarlorn::workbench {
namespace {

constexpr std::array kLogKeys = {
    Optional("from", ValueType::kDate, "At or after"),
    Optional("to", ValueType::kDate, "At or before"),
    Optional("user", ValueType::kLong, "Key of the user"),
    Optional("code", ValueType::kLong, "Code of an operation; leaves fields out"),
    Optional("field", ValueType::kString, "Name of a field; leaves operations out"),
    Optional("number", ValueType::kString, "Order number, or key of an order"),
    Optional("most", ValueType::kLong, "Most entries, 1 to 500; none = 500"),
    Optional("beforeTime", ValueType::kDate, "The FTime of the last entry that is known: answers those behind it"),
    Optional("beforeKind", ValueType::kString, "Its FKind"),
    Optional("beforeKey", ValueType::kLong, "Its FKey"),
};
constexpr std::array kInvoiceKeys = {Optional("text", ValueType::kString, "Part of the invoice's number")};

constexpr std::array kLogColumns = {
    Column{"FKey", ValueType::kLong, "Key of the entry in its log"},
    Column{"FTime", ValueType::kDate, "When"},
    Column{"FKind", ValueType::kString, "operation or field"},
    Column{"FName", ValueType::kString, "Code of the operation, or name of the field"},
    Column{"FOrder", ValueType::kLong, "Key of the order"},
    Column{"FOrderID", ValueType::kString, "Order number, \"\" where it is not known"},
    Column{"FEntryID", ValueType::kLong, "The line, 0 = the order itself"},
    Column{"FUserID", ValueType::kLong, "Key of the user"},
    Column{"FUserName", ValueType::kString, "Who"},
    Column{"FAddress", ValueType::kString, "Address of the client, \"\" for a field"},
    Column{"FOldValue", ValueType::kString, "Value before, \"\" for a field"},
    Column{"FNewValue", ValueType::kString, "Value since"},
};
constexpr std::array kInvoiceColumns = {
    Column{"FInterID", ValueType::kLong, "Key of the cost invoice"},
    Column{"FBillNo", ValueType::kString, "Its number"},
    Column{"FDate", ValueType::kDate, "Its date"},
    Column{"FAmount", ValueType::kDecimal, "Its amount"},
    Column{"FOrders", ValueType::kLong, "How many orders it covers"},
    Column{"FCosts", ValueType::kDecimal, "Their logistics costs together"},
};
constexpr std::array kTaskColumns = {
    Column{"FRowID", ValueType::kLong, "Key of the task"},
    Column{"FTaskId", ValueType::kString, "Chosen by whoever made it, \"\" for web-shop orders"},
    Column{"FTaskType", ValueType::kLong, "120 purchase lines, 130 web-shop orders, 160 sales lines"},
    Column{"FTaskName", ValueType::kString,
           "Keys of its documents, with commas between them; \"\" for orders where shops are hidden from the asker"},
    Column{"FWebTplType", ValueType::kLong, "Type number of the provider"},
    Column{"FProvider", ValueType::kString, "Its name"},
    Column{"FWebTplID", ValueType::kString, "Id of the outside warehouse"},
    Column{"FWarehouse", ValueType::kString, "Its name"},
    Column{"FProgressPer", ValueType::kLong, "How much of it is done, per cent"},
    Column{"FUserName", ValueType::kString, "Who made it"},
    Column{"FRefreshTime", ValueType::kDate, "When it moved last"},
    Column{"FStatus", ValueType::kLong, "0 queued, 1 under way, 2 done"},
};
constexpr std::array kPurchaseColumns = {
    Column{"FInterID", ValueType::kLong, "Key of the purchase order"},
    Column{"FBillNo", ValueType::kString, "Its number"},
    Column{"FDate", ValueType::kDate, "Its date"},
    Column{"FTplStatus", ValueType::kString, "\"\" and 0 not submitted, 3 submitted"},
    Column{"FTplFail", ValueType::kString, "Why the outside warehouse refused it"},
    Column{"FLines", ValueType::kLong, "How many lines it has"},
    Column{"FSubmitted", ValueType::kLong, "How many of them are submitted"},
    Column{"FWarehouse", ValueType::kString, "Id of the outside warehouse"},
};
constexpr std::array kSwitchColumns = {
    Column{"FCategory", ValueType::kString, "EC or another, \"\" for none"},
    Column{"FKey", ValueType::kString, "Its name"},
    Column{"FValue", ValueType::kString, "Its value, NULL where it is not set"},
    Column{"FDescription", ValueType::kString, "What the ERP says of it"},
};

constexpr std::array<std::string_view, 1> kInvoiceRight = {"UpdateCostInvoiceStatus"};
constexpr std::array<std::string_view, 1> kTaskRight = {"SubMitTplOrderTask"};
constexpr std::array<std::string_view, 1> kPurchaseRight = {"ClearTplFieldInfo"};

constexpr std::array kOfficeQuestions = {
    Question{.name = "log",
             .help = "What was done to orders, the latest first; with the last entry that is known those behind it.",
             .keys = kLogKeys,
             .columns = kLogColumns,
             .ask = AskLog},
    Question{
        .name = "invoices",
        .help =
            "Cost invoices with the orders that they cover, the latest first; at most 200. Those with an order of a hidden shop are left out.",
        .keys = kInvoiceKeys,
        .columns = kInvoiceColumns,
        .ask = AskInvoices,
        .rights = kInvoiceRight},
    Question{.name = "tasks",
             .help = "Tasks for outside warehouses, the latest first; at most 200.",
             .keys = {},
             .columns = kTaskColumns,
             .ask = AskTasks,
             .rights = kTaskRight},
    Question{.name = "purchases",
             .help = "Purchase orders and what of them is at outside warehouses, the latest first; at most 200.",
             .keys = {},
             .columns = kPurchaseColumns,
             .ask = AskPurchases,
             .rights = kPurchaseRight},
    Question{.name = "switches",
             .help = "The ERP's settings that decide what the operations do.",
             .keys = {},
             .columns = kSwitchColumns,
             .ask = AskSwitches},
};

}  // namespace

std::span<const Question> OfficeQuestions() { return kOfficeQuestions; }

}  // namespace tessarlorn::workbench
