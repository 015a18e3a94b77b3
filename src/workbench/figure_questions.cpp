#include <array>

#include "workbench/figures.h"
#include "workbench/keys.h"
#include "workbench/tables.h"

namespace tessarlorn::workbench {
namespace {

constexpr std::array kDayKeys = {
    Mandatory("day", ValueType::kDate, "The last day that is looked at"),
    Optional("days", ValueType::kLong, "How many days, 1 to 31; none = 1"),
};

constexpr std::array kBacklogColumns = {
    Column{"FState", ValueType::kLong, "2 to be picked, 6 to be delivered"},
    Column{"FAge", ValueType::kLong,
           "Since the payment: 0 up to 4 hours, 1 up to 24 hours, 2 up to 2 days, 3 up to 3 days, 4 up to 7 days, 5 "
           "longer"},
    Column{"FFrom", ValueType::kDate, "Paid at or after, NULL for the oldest"},
    Column{"FTo", ValueType::kDate, "Paid before"},
    Column{"FOrders", ValueType::kLong, "How many orders"},
};
constexpr std::array kWorkColumns = {
    Column{"FStep", ValueType::kString, "picked, checked, weighed or delivered"},
    Column{"FFrom", ValueType::kDate, "Begin of the hour, or of the day"},
    Column{"FTo", ValueType::kDate, "Its end"},
    Column{"FPersonID", ValueType::kString, "Code of the employee who picked, else key of the user"},
    Column{"FPersonName", ValueType::kString, "Who"},
    Column{"FOrders", ValueType::kLong, "How many orders"},
};
constexpr std::array kCarrierColumns = {
    Column{"FCarrierID", ValueType::kLong, "Id of the carrier, 0 = none"},
    Column{"FCarrier", ValueType::kString, "Its name in the asker's language"},
    Column{"FOrders", ValueType::kLong, "How many orders were delivered"},
    Column{"FWeight", ValueType::kDecimal, "Their weights together, in kg"},
    Column{"FCost", ValueType::kDecimal, "Their logistics costs together"},
};
constexpr std::array kFailureColumns = {
    Column{"FReason", ValueType::kString, "The web shop's reason"},
    Column{"FUpload", ValueType::kLong, "State of the upload: 0 to be tried again, 2 failed"},
    Column{"FOrders", ValueType::kLong, "How many orders"},
};

constexpr std::array kFigures = {
    Question{
        .name = "backlog",
        .help = "How long paid orders wait to be picked and to be delivered. Orders without a pay date are left out.",
        .keys = {},
        .columns = kBacklogColumns,
        .ask = AskBacklog},
    Question{.name = "work",
             .help =
                 "What was done by whom: for a day by hour, for several by day. Hours and days without any are left "
                 "out. Weighings are counted where they are logged.",
             .keys = kDayKeys,
             .columns = kWorkColumns,
             .ask = AskWork},
    Question{.name = "carriers",
             .help = "Which carriers took the orders that were delivered, with weights and costs.",
             .keys = kDayKeys,
             .columns = kCarrierColumns,
             .ask = AskCarriers},
    Question{
        .name = "failures",
        .help = "Why orders could not be reported to their web shops, the most frequent reasons first; at most 200.",
        .keys = {},
        .columns = kFailureColumns,
        .ask = AskFailures},
};

}  // namespace

std::span<const Question> FigureQuestions() { return kFigures; }

}  // namespace tessarlorn::workbench
