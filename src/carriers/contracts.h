// The contracts of the operations of carriers/.
#pragma once

#include "frame/keys.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

namespace carriers {

using enum ValueType;

inline constexpr Column kUncheckedColumns[] = {
    {"FID", kString, "Order keys with commas between them"},
    {"FOrderID", kString, "Their order numbers with commas between them"},
};

}  // namespace carriers

template <>
inline constexpr Contract kContract<&clsSaveData::UpdateAddressReachableState> = {
    .name = "UpdateAddressReachableState",
    .source = "TessarLornPickingAndDelivery.clsSaveData.UpdateAddressReachableState",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory},
                  {.name = "lType"}},
    .help =
        "Records that carriers serve the addresses of the orders of the list sFID, and remembers each address with "
        "its carrier, in batches of 150; with lType 4 the orders are to be checked again instead. False, with "
        "nothing done, without sDsn or sFID.",
};
template <>
inline constexpr Contract kContract<&clsGetData::bIsAddressReachable> = {
    .name = "bIsAddressReachable",
    .source = "bIsAddressReachable",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help = "Whether addresses are to be checked (setting AddressReachable). False without sDsn or such a setting.",
};
template <>
inline constexpr Contract kContract<&clsGetData::GetNeedAddressReachableInfo> = {
    .name = "GetNeedAddressReachableInfo",
    .source = "GetNeedAddressReachableInfo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory}},
    .help =
        "A Dictionary with FID and FOrderID, the keys and order numbers, with commas between them, of those of the "
        "orders of the list sFID that have a carrier and an address to be checked; empty texts when there is none. "
        "Nothing without sDsn or sFID.",
    .columns = carriers::kUncheckedColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetNoAddressReachableInfo> = {
    .name = "GetNoAddressReachableInfo",
    .source = "GetNoAddressReachableInfo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory}},
    .help =
        "A Vector of Dictionaries with FID and FOrderID: those of the orders of the list sFID that have a carrier "
        "which does not serve their address. Nothing without sDsn or sFID.",
    .columns = kOrderNames,
};

}  // namespace tessarlorn
