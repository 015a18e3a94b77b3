#include <algorithm>
#include <array>

#include "workbench/history.h"
#include "workbench/orders.h"
#include "workbench/question.h"

namespace tessarlorn::workbench {
namespace {

constexpr Key Optional(std::string_view name, ValueType type, std::string_view help) {
  return {.name = name, .type = type, .fallback = {}, .help = help};
}
constexpr Key Mandatory(std::string_view name, ValueType type, std::string_view help) {
  return {.name = name, .type = type, .need = Need::kMandatory, .fallback = {}, .help = help};
}

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
    Optional("sort", ValueType::kString,
             "FID, FOrderID, FOrderDate, FSitePayDate, FSendDate, FAmount, FWeight, FConsignee, FBuyerNick, "
             "FLogisticsOrder or FSerialNumber; none = FSitePayDate"),
    Optional("descending", ValueType::kBoolean, "Whether the last come first"),
    Optional("most", ValueType::kLong, "Most keys, 1 to 100000"),
};
constexpr std::array kRowsKeys = {
    Mandatory("keys", ValueType::kVector, "Keys of orders (FID), 1 to 500"),
    Optional("locked", ValueType::kBoolean, "Answers the locked ones of them, in place of the others"),
};
constexpr std::array kFindKeys = {
    Mandatory("text", ValueType::kString,
              "A key, order number, web-shop order number, waybill number or unique code; of order and waybill numbers "
              "the beginning is enough"),
};
constexpr std::array kHistoryKeys = {Mandatory("order", ValueType::kLong, "Key of an order (FID)")};

constexpr std::array kKeyColumn = {Column{"FID", ValueType::kLong, "Key of an order"}};
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
    Column{"FKind", ValueType::kString, "shop, carrier, warehouse, employee or orderType"},
    Column{"FID", ValueType::kLong, "Its id"},
    Column{"FNumber", ValueType::kString, "Its code, \"\" for none"},
    Column{"FName", ValueType::kString, "Its name in the asker's language"},
};

constexpr std::array kQuestions = {
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
    Question{.name = "find",
             .help = "The orders that have a number, the exact ones first, then the latest; at most 20.",
             .keys = kFindKeys,
             .columns = kFoundColumns,
             .ask = AskFind},
    Question{.name = "history",
             .help = "What was done to an order, the latest first; at most 1,000 entries.",
             .keys = kHistoryKeys,
             .columns = kHistoryColumns,
             .ask = AskHistory},
    Question{.name = "choices",
             .help = "Web shops, carriers, warehouses, employees and order types, by kind and code.",
             .keys = {},
             .columns = kChoiceColumns,
             .ask = AskChoices},
};

}  // namespace

std::span<const Question> Questions() { return kQuestions; }

const Question* FindQuestion(std::string_view name) {
  const auto found = std::find_if(kQuestions.begin(), kQuestions.end(),
                                  [&](const Question& question) { return question.name == name; });
  return found == kQuestions.end() ? nullptr : &*found;
}

}  // namespace tessarlorn::workbench
