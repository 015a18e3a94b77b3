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
        "Records that carriers serve the addresses of the orders of the list sFID, and remembers each complete "
        "address with its carrier, once a call. Orders, then addresses, go in batches of 150; batches before a "
        "failing one stay. With lType 4 those of the orders that have an extension row are to be checked again "
        "instead. False, with nothing done, without sDsn or sFID.",
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
        "Those of the orders of the list sFID that have a carrier and an address to be checked, an order "
        "without extension row being one; empty texts when there is none. Nothing without sDsn or sFID.",
    .columns = carriers::kUncheckedColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetNoAddressReachableInfo> = {
    .name = "GetNoAddressReachableInfo",
    .source = "GetNoAddressReachableInfo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory}},
    .help =
        "Those of the orders of the list sFID that have a carrier which does not serve their address. Nothing "
        "without sDsn or sFID.",
    .columns = kOrderNames,
};

}  // namespace tessarlorn
