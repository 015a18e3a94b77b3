// The contracts of the operations of carriers/.
#pragma once

#include "frame/keys.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

namespace carriers {

using enum ValueType;
using enum Standing;

inline constexpr Key kChoice[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Mandatory("FLogisticsID", kLong, kNumber, "Carrier, its id; 0 takes the carrier away"),
};

inline constexpr Key kChoices[] = {
    ConnectionKey("sDSN"),
    Naming(Names::kOrders, Optional("FID", kString, kKeyList, "",
                                    "Order keys: leaves carriers out that are known not to serve an address")),
};

inline constexpr Key kStarted[] = {
    ConnectionKey("sDSN"),
    Optional("FWebShopID", kLong, kNumber, "", "Web shop, its id; none = all of them"),
};

inline constexpr Key kShop[] = {
    ConnectionKey("sDSN"),
    Mandatory("FWebShopID", kLong, kNumber, "Web shop, its id"),
};

inline constexpr Key kAccount[] = {
    ConnectionKey("sDSN"),
    Mandatory("FLogisticsID", kLong, kNumber, "Carrier, its id"),
    Optional("FWebShopID", kLong, kNumber, "0", "Web shop, its id; 0 = only the account of all shops"),
};

inline constexpr Key kParcel[] = {
    ConnectionKey("sDSN"),
    Naming(Names::kWaybill, Mandatory("FLogisticsOrder", kString, kQuoted,
                                      "Waybill number or, of up to 23 digits, the order's unique code")),
};

inline constexpr Key kWaybillState[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Mandatory("FEMSStatus", kLong, kNumber, "0 none, 1 asked for, 2 given, 3 printed, 4 cancelled"),
    Optional("FLogisticsOrder", kString, kQuoted, "", "The waybill number that was given, for one order"),
};

inline constexpr Key kParcels[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Mandatory("FParcelQuantity", kLong, kNumber, "Parcels of the shipment, 1 to 300"),
};

inline constexpr Key kInsured[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Mandatory("FInsuredValue", kDouble, kNumber, "Insured amount, 0 to 9999999999.99; rounded to two decimals"),
};

inline constexpr Key kServices[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Given("FJzService", kString, kNowhere, "Codes of IC_JzService with commas between them; empty = none"),
};

inline constexpr Column kCarrierColumns[] = {
    {"FItemID", kLong, "Carrier, its id"},
    {"FNumber", kString, "Its code"},
    {"FName", kString, "Its name, in the caller's language"},
    {"FIsElectronic", kLong, "1 = has electronic waybills"},
    {"FIsDefault", kLong, "1 = the usual one"},
};

inline constexpr Column kStartedColumns[] = {
    {"FLogisticsID", kLong, "Carrier, its id"},
    {"FNumber", kString, "Its code"},
    {"FName", kString, "Its name, in the caller's language"},
    {"FWebShopID", kLong, "Web shop, its id"},
    {"FAccount", kString, "Account with the carrier"},
    {"FTemplate", kString, "The carrier's layout of the waybill"},
};

inline constexpr Column kAccountColumns[] = {
    {"Account", kString, "Account with the carrier"},
    {"MonthlyCode", kString, "The code for monthly billing"},
    {"Sender", kString, "Who sends"},
    {"SenderPhone", kString, "Telephone number"},
    {"SenderProvince", kString, "Name of the province, in the caller's language"},
    {"SenderCity", kString, "Name of the city"},
    {"SenderDistrict", kString, "Name of the district"},
    {"SenderAddress", kString, "Street and house"},
    {"Template", kString, "The carrier's layout of the waybill"},
};

inline constexpr Column kParcelColumns[] = {
    kOrderKeyColumn,
    kOrderNumberColumn,
    {"FOrderStatus", kLong, "2 to be picked, 6 to be delivered, 14 delivered"},
    {"FLogisticsID", kLong, "Carrier, its id; 0 = none"},
    {"FLogisticsName", kString, "Its name, in the caller's language"},
    {"FConsignee", kString, "Who receives the parcel"},
    {"FWeight", kDecimal, "Weight in kg"},
    {"FPIckingGoodsStatus", kLong, "1 = the picking check was passed"},
    {"FWeighttingStatus", kLong, "1 = weighed"},
    {"FParcelQuantity", kLong, "Parcels of the shipment"},
    {"Count", kLong, "How many orders have the number"},
};

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
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrders},
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
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrders}},
    .help =
        "Those of the orders of the list sFID that have a carrier and an address to be checked, an order "
        "without extension row being one; empty texts when there is none. Nothing without sDsn or sFID.",
    .columns = carriers::kUncheckedColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetNoAddressReachableInfo> = {
    .name = "GetNoAddressReachableInfo",
    .source = "GetNoAddressReachableInfo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrders}},
    .help =
        "Those of the orders of the list sFID that have a carrier which does not serve their address. Nothing "
        "without sDsn or sFID.",
    .columns = kOrderNames,
    .needs_latest = true,
};

template <>
inline constexpr Contract kContract<&clsSaveData::SetUpLogisticsCompany> = {
    .name = "SetUpLogisticsCompany",
    .source = "SetUpLogisticsCompany",
    .arguments = {{.name = "dctPara", .keys = carriers::kChoice}},
    .help =
        "Sets the carrier of those of the orders that are not delivered. Where that is another one than before, the "
        "waybill number and the state of the electronic waybill are emptied and the address is to be checked again; "
        "the change is recorded in the field log first, as old->new. False, with nothing done, without sDSN, FID or "
        "FLogisticsID.",
    .errors = "5 for an unknown carrier, 13 for what is no number, with nothing stored",
};
template <>
inline constexpr Contract kContract<&clsSaveData::UpdateEMSOrderStatus> = {
    .name = "UpdateEMSOrderStatus",
    .source = "UpdateEmsPrintStatus",
    .arguments = {{.name = "dctPara", .keys = carriers::kWaybillState}},
    .help =
        "Stores the state of the electronic waybill of orders, and the number when one is given, which goes to the "
        "field log first; printed (3) counts one more print of the waybill. The orders are not looked up: the log may "
        "name one that does not exist. False, with nothing done, without sDSN, FID or FEMSStatus.",
    .errors =
        "5 for another state, and for a number with several orders, 13 for what is no number, with nothing stored",
};
template <>
inline constexpr Contract kContract<&clsSaveData::SetSFPackageQuantity> = {
    .name = "SetSFPackageQuantity",
    .source = "SetSFPackageQuantity",
    .arguments = {{.name = "dctPara", .keys = carriers::kParcels}},
    .help =
        "Stores how many parcels the shipment of each of the orders has, in its header extension, which is made where "
        "there is none. False, with nothing done, without sDSN, FID or FParcelQuantity.",
    .errors = "5 for a number that is not from 1 to 300, 13 for what is no number, with nothing stored",
};
template <>
inline constexpr Contract kContract<&clsSaveData::WriteInsuredAmount> = {
    .name = "WriteInsuredAmount",
    .source = "WriteInsuredAmount",
    .arguments = {{.name = "dctPara", .keys = carriers::kInsured}},
    .help =
        "Stores for how much each of the orders is insured, rounded to two decimals (half away from zero), in its "
        "header extension, which is made where there is none. False, with nothing done, without sDSN, FID or "
        "FInsuredValue.",
    .errors = "5 for an amount below 0, 13 for what is no number, with nothing stored",
};
template <>
inline constexpr Contract kContract<&clsSaveData::WriteJzservice> = {
    .name = "WriteJzservice",
    .source = "WriteJzservice",
    .arguments = {{.name = "dctPara", .keys = carriers::kServices}},
    .help =
        "Stores the home-delivery and installation services of each of the orders, in its header extension, which is "
        "made where there is none. They stand as the table of services writes them, each once. What the order list "
        "shows as FIsJzserviceOrder is the web shop's wish and stays. False, with nothing done, without sDSN, FID or "
        "FJzService, and for Null.",
    .errors = "5 naming the codes that are unknown, with nothing stored",
};
template <>
inline constexpr Contract kContract<&clsGetData::GetLogisticsCompany> = {
    .name = "GetLogisticsCompany",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetLogisticsCompany",
    .arguments = {{.name = "dctPara", .keys = carriers::kChoices}},
    .help =
        "The carriers by their codes. With FID only those that are not remembered as not serving the address of one of "
        "these orders. Nothing without sDSN.",
    .columns = carriers::kCarrierColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetStartElectronicLogistics> = {
    .name = "GetStartElectronicLogistics",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetStartElectronicLogistics",
    .arguments = {{.name = "dctPara", .keys = carriers::kStarted}},
    .help =
        "For each web shop the carriers whose electronic waybills are switched on for it, by shop and code. An account "
        "of the shop comes before one of all shops, also when it is switched off. Nothing without sDSN.",
    .errors = "13 for what is no number",
    .columns = carriers::kStartedColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::IsThermalPrinting> = {
    .name = "IsThermalPrinting",
    .source = "IsThermalPrinting",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help = "Whether waybills go to a thermal printer (setting ThermalPrinting). False without sDsn or such a setting.",
};
template <>
inline constexpr Contract kContract<&clsGetData::GetJDCustomerCode> = {
    .name = "GetJDCustomerCode",
    .source = "GetJDCustomerCode",
    .arguments = {{.name = "dctPara", .keys = carriers::kShop}},
    .help =
        "The customer code by which the carrier of the web shop's own marketplace knows the shop. Empty when there is "
        "no such carrier or account, and without sDSN or FWebShopID.",
    .errors = "13 for what is no number",
};
template <>
inline constexpr Contract kContract<&clsGetData::GetBigAccountInfo> = {
    .name = "GetBigAccountInfo",
    .source = "GetBigAccountInfo",
    .arguments = {{.name = "dctPara", .keys = carriers::kAccount}},
    .help =
        "The account with a carrier and the sender that its waybills name; the shop's own account comes before that of "
        "all shops. The account's secret is not told. Nothing without sDSN or FLogisticsID, and when there is no "
        "account.",
    .errors = "13 for what is no number",
    .columns = carriers::kAccountColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetOrderInfoByLogisticsOrder> = {
    .name = "GetOrderInfoByLogisticsOrder",
    .source = "GetOrderInfoByLogisticsOrder",
    .arguments = {{.name = "dctPara", .keys = carriers::kParcel}},
    .help =
        "The order of a parcel. Of several the one that is not delivered, then the latest. Nothing without sDSN or "
        "FLogisticsOrder, and when there is none.",
    .columns = carriers::kParcelColumns,
    .needs_latest = true,
};

}  // namespace tessarlorn
