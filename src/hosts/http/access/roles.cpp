#include "hosts/http/access/roles.h"

#include <algorithm>
#include <array>
#include <span>

namespace tessarlorn::http {
namespace {

using Names = std::span<const std::string_view>;

constexpr std::string_view kAdministrator = "administrator";

/// They take SQL or names of tables. GetListData has filters of SQL beside its own ones, which callers are refused.
constexpr std::array<std::string_view, 3> kTrusted = {"ExecuteSQL", "GetUploadDataByTab", "SubMitPorTask"};
/// Of clsSaveData, and changes nothing.
constexpr std::array<std::string_view, 1> kOtherReads = {"GetUniqueCodeIndex"};

constexpr std::array<std::string_view, 4> kPicking = {"ConfirmBill", "SavePickingGoods", "SaveBatchNo",
                                                      "SavePrintSerialNumber"};
constexpr std::array<std::string_view, 2> kChecking = {"MarkPickingGoodsStatus", "ClearPickingGoodsStatus"};
constexpr std::array<std::string_view, 6> kPacking = {
    "SaveLogWeight",        "SetUpLogisticsNumber", "SetUpLogisticsNumberAndWeight", "UpdateLogisticsWeightStatus",
    "UpdateEMSOrderStatus", "SetSFPackageQuantity"};
constexpr std::array<std::string_view, 4> kDelivering = {"Delivery", "BackToThePreviousStep", "UpdateDeliveryData",
                                                         "ModifyCost"};
constexpr std::array<std::string_view, 7> kCarriers = {
    "SetUpLogisticsCompany", "SetUpLogisticsNumber", "UpdateEMSOrderStatus",       "SetSFPackageQuantity",
    "WriteInsuredAmount",    "WriteJzservice",       "UpdateAddressReachableState"};
constexpr std::array<std::string_view, 3> kUploads = {"UploadStatus", "UploadStatusFailure",
                                                      "UpLoadStatusForManualAndClosed"};
constexpr std::array<std::string_view, 3> kOutsideWarehouses = {"SubMitTplOrderTask", "ClearTplFieldInfo",
                                                                "DownloadWebTpls"};
constexpr std::array<std::string_view, 7> kAmending = {"OrderRemark",          "DeRemark",    "DeliveryRemark",
                                                       "ChangeAddess",         "ChangeStock", "UpdateCostInvoiceStatus",
                                                       "UpdateAfterDeleteBill"};
/// What outside warehouses report of parcels.
constexpr std::array<std::string_view, 4> kReports = {"Delivery", "UpdateDeliveryData", "SaveLogWeight",
                                                      "SetUpLogisticsNumberAndWeight"};

/// What a role may change; all roles may read.
struct RoleRow {
  std::string_view name;
  std::array<Names, 8> changes;
};

const std::array<RoleRow, 6> kRoles = {{
    {"reader", {}},
    {"picker", {kPicking, kChecking}},
    {"packer", {kChecking, kPacking}},
    {"dispatcher", {kPacking, kDelivering, kCarriers, kUploads, kOutsideWarehouses}},
    {"supervisor", {kPicking, kChecking, kPacking, kDelivering, kCarriers, kUploads, kOutsideWarehouses, kAmending}},
    {"integrator", {kReports, kCarriers, kUploads, kOutsideWarehouses}},
}};

const Operation* RequireBuiltIn(std::string_view name) {
  const Operation* const operation = FindOperation(name);
  if (operation == nullptr) Raise(error_number::kInternalError, "A role has no operation " + std::string(name));
  return operation;
}

std::set<const Operation*> Reads() {
  std::set<const Operation*> reads;
  for (const Operation* const operation : Operations()) {
    if (operation->service == ServiceClass::kGetData) reads.insert(operation);
  }
  for (const std::string_view name : kTrusted) reads.erase(RequireBuiltIn(name));
  for (const std::string_view name : kOtherReads) reads.insert(RequireBuiltIn(name));
  return reads;
}

std::vector<RolePtr> MakeBuiltInRoles() {
  std::vector<RolePtr> roles;
  for (const RoleRow& row : kRoles) {
    std::set<const Operation*> operations = Reads();
    for (const Names names : row.changes) {
      for (const std::string_view name : names) operations.insert(RequireBuiltIn(name));
    }
    roles.push_back(std::make_shared<Role>(std::string(row.name), std::move(operations)));
  }
  roles.push_back(std::make_shared<Role>(std::string(kAdministrator),
                                         std::set<const Operation*>(Operations().begin(), Operations().end()), true));
  return roles;
}

}  // namespace

bool Role::Allows(const Operation& operation) const {
  return operations_.contains(&operation) || operation.name == "TransMode";
}

bool IsForAdministrators(const Operation& operation) {
  return std::find(kTrusted.begin(), kTrusted.end(), operation.name) != kTrusted.end();
}

const std::vector<RolePtr>& BuiltInRoles() {
  static const std::vector<RolePtr> kBuiltIn = MakeBuiltInRoles();
  return kBuiltIn;
}

}  // namespace tessarlorn::http
