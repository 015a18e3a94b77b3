// The data of delivery prints, and the orders that were printed often enough.
#include <algorithm>
#include <array>

#include "delivery/contracts.h"
#include "frame/identity.h"
#include "frame/order_call.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {
namespace {

struct PrintType {
  std::int32_t id;
  /// Reads the type's limit.
  std::string_view condition;
  /// The order's column that counts its prints.
  std::string_view counter;
};

/// Pick list, delivery note, waybill, delivery list.
constexpr std::array kPrintTypes = {
    PrintType{10143011, "Where FID = 10143011", "FPrintPickCount"},
    PrintType{10143012, "Where FID = 10143012", "FPrintSendCount"},
    PrintType{10143013, "Where FID = 10143013", "FPrintExpressCount"},
    PrintType{10143014, "Where FID = 10143014", "FPrintSendList"},
};

const PrintType* FindPrintType(const Parameters& parameters) {
  const Variant& id = parameters.Value("PrintID");
  if (!IsNumeric(id)) return nullptr;
  const auto* const found =
      std::find_if(kPrintTypes.begin(), kPrintTypes.end(), [&](const PrintType& type) { return id.Equals(type.id); });
  return found == kPrintTypes.end() ? nullptr : found;
}

/// How often a print of the type is allowed; nothing when that is not limited.
std::optional<std::int32_t> ReadPrintLimit(Connection& connection, const PrintType* type) {
  TextBuilder text;
  text.Append(R"(
SELECT  FID ,
        FName AS FName ,
        FPrintControlOrNo ,
        FPrintMaxCount ,
        FPrintAfterCheck
From ICPrintMaxCount
)"_sql);
  text.Line(type == nullptr ? "Where FID = -99999999" : type->condition);
  const RecordsetPtr limit = connection.Query(text.GetText());
  if (limit->eof() || limit->Get("FPrintControlOrNo").is_null() || !limit->Get("FPrintControlOrNo").ToBool()) {
    return std::nullopt;
  }
  return limit->Get("FPrintMaxCount").ToInt32();
}

}  // namespace

RecordsetPtr clsGetData::GetSumRecordsetDataForDelivery(const Dictionary* dctParam) {
  constexpr const Contract& contract = kContract<&clsGetData::GetSumRecordsetDataForDelivery>;
  return CallForOrders(State(), contract, dctParam, [&](const OrderCall& call) {
    TextBuilder text;
    text.Append(R"(
SELECT  SUM(t1.FAmount) AS FTotalAmount
FROM    IC_Web2ERPOrdersEntry t1
WHERE   t1.FID IN ( {FID})
GROUP BY t1.FID
)"_sql,
                {{"FID", call.orders}});
    return call.connection.ExecuteAnswer(text.GetText());
  });
}

RecordsetPtr clsGetData::GetPrintRecordsetForDelivery(const Dictionary* dctParam) {
  constexpr const Contract& contract = kContract<&clsGetData::GetPrintRecordsetForDelivery>;
  return CallForOrders(State(), contract, dctParam, [&](const OrderCall& call) {
    TextBuilder text;
    text.Append(R"(
SELECT  t1.FID ,
        t1.FBuyerName ,            --买家姓名(发货日期)
        t1.FSendDate ,             --发货日期
        t1.FUniqueCode ,           --唯一吗
        t1.FConsignee ,            --收货人
        t1.FMobile ,               --收货人手机
        t1.FTelephone ,            --收货人电话
        t1.FDeliveryAddress ,      --收货地址
        t1.FZipCode ,              --收货人邮编
        t3.FName ,                 --商品名称
        t3.FModel ,                --规格型号
        t4.FName AS FUnitName ,    --收货单位名称
        t2.FQuantity ,             --数量
        t2.FPrice ,                --单价
        t2.FAmount ,               --金额
        t2.FDiscountFee ,          --优惠金额
        t2.FSiteOrderID,           --网上订单号
        t2.FEntryID AS FIndex,     --分录号，用于显示物料顺序
)"_sql);
    text.Append(LanguageOf(context_) == "CHS" ? R"(
        t5.FName AS FDeliveryProvince, --省
        t6.FName AS FDeliveryCity,     --市
        t7.FName AS FDeliveryDistrict  --区
)"_sql
                                              : R"(
        t5.FName_CHT AS FDeliveryProvince, --省
        t6.FName_CHT AS FDeliveryCity,     --市
        t7.FName_CHT AS FDeliveryDistrict  --区
)"_sql);
    text.Append(R"(
FROM    IC_Web2ERPOrders t1
        INNER JOIN IC_Web2ERPOrdersEntry t2 ON t1.FID = t2.FID
        INNER JOIN t_ICItem t3 ON t2.FItemID = t3.FItemID
        INNER JOIN t_MeasureUnit t4 ON t2.FUnitID = t4.FItemID
        LEFT JOIN IC_Area t5 ON t1.FDeliveryProvince =t5.FID
        LEFT JOIN IC_Area t6 ON t1.FDeliveryCity =t6.Fid
        LEFT JOIN IC_Area t7 ON t1.FDeliveryDistrict =t7.FID
WHERE   t1.FID IN ( {FID})
)"_sql,
                {{"FID", call.orders}});
    text.Line("Order by t1.FID,t2.FEntryID ");
    return call.connection.ExecuteAnswer(text.GetText());
  });
}

Vector clsGetData::GetOverMaxPrintCountBillInfo(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetOverMaxPrintCountBillInfo>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    Vector reported;
    const PrintType* const type = FindPrintType(call.parameters);
    const std::optional<std::int32_t> limit = ReadPrintLimit(call.connection, type);
    if (type == nullptr || !limit) return reported;
    TextBuilder text;
    text.Append(R"(
SELECT  FOrderID ,
        FUniqueCode ,
        FPrintPickCount ,
        FPrintSendCount ,
        FPrintExpressCount ,
        FPrintSendList
)"_sql);
    text.Line("From IC_Web2ERPOrders ");
    text.Line("WHERE FID IN ( ", call.orders, ")");
    const RecordsetPtr orders = call.connection.Query(text.GetText());
    for (; !orders->eof(); orders->MoveNext()) {
      const Variant count = orders->Get(type->counter);
      if (count.is_null() || count.ToInt32() < *limit) continue;
      reported.Add(Dictionary{{"FOrderID", orders->Get("FOrderID")},
                              {"FUniqueCode", orders->Get("FUniqueCode")},
                              {std::string(type->counter), count},
                              {"FPrintMaxCount", *limit}});
    }
    return reported;
  });
}

}  // namespace tessarlorn
