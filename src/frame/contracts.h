// The contracts of the operations of frame/.
#pragma once

#include "frame/keys.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

template <>
inline constexpr Contract kContract<&clsSaveData::TransMode> = {
    .name = "TransMode",
    .source = "",
    .arguments = {},
    .help =
        "The transaction mode that the class reports to its container: 2, each call runs in a transaction. Never "
        "raises.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::WriteSaveOrderLog> = {
    .name = "WriteSaveOrderLog",
    .source = "",
    .arguments = {{.name = "FID", .names = Names::kOrders},
                  {.name = "EntryID", .names = Names::kOrderLines},
                  {.name = "FieldName"},
                  {.name = "Value"}},
    .help =
        "Records a new field value of an order (EntryID 0) or of one of its lines (FID may be empty), on the "
        "session that an earlier operation of the same instance opened. Answers what the web-order component "
        "answers; its errors come out unchanged, 429 when there is none, 91 without such a session, as in a "
        "single call by the command.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::WriteOPLog> = {
    .name = "WriteOPLog",
    .source = "",
    .arguments = {{.name = "sFID", .names = Names::kOrders},
                  {.name = "OPCode"},
                  {.name = "ItemID"},
                  {.name = "FOldValue"},
                  {.name = "FNewValue"}},
    .help =
        "Records an operation on the orders of the list sFID, with acting user, client address and local time, "
        "on the session that an earlier operation of the same instance opened. ItemID is 0 for whole orders. "
        "Answers what the web-order component answers; its errors come out unchanged, 429 when there is none, "
        "91 without such a session, 5 when the client's address has no end, as in a single call by the command.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::IsLogEnable> = {
    .name = "IsLogEnable",
    .source = "",
    .arguments = {{.name = "OPCode"}},
    .help =
        "Whether operations of this code are to be logged, asked on the session that an earlier operation of the "
        "same instance opened. Errors of the web-order component come out unchanged, 429 when there is none, 91 "
        "without such a session, as in a single call by the command.",
};
template <>
inline constexpr Contract kContract<&clsGetData::TransMode> = {
    .name = "TransMode",
    .source = "",
    .arguments = {},
    .help =
        "The transaction mode that the class reports to its container: 2, each call runs in a transaction. Never "
        "raises.",
};

}  // namespace tessarlorn
