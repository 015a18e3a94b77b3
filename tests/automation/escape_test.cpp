// What Escape=Yes keeps whole: one text with a quote goes through every text of every operation, passed and stored.
#include <map>

#include "automation/operation_arguments.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

constexpr const char* kText = "O'Brien \"x\" 王; drop table t --";
constexpr const char* kLiteral = "N'O''Brien \"x\" 王; drop table t --'";

/// Arguments and keys that are SQL, lists of keys or numbers, and whose text is therefore not free.
constexpr std::string_view kFixed =
    " FID=1 sFID=1 sFIDs=1 strIDs=1 sInterFID=1 EntryID=0 OPCode=3008 ItemID=0 StrSql=SELECT(1) sFiter=1=1 "
    "lTranType=71 AdvancedFilter= FGoodsCount= FEntryCount= icboTpl= icboCainiao= OtherFilterOne= taskID= "
    "FJzService= pageTable=pageTable strTempTable=Reports FZipCode=O'B;-- sFKey=1014301_O'B key=101 ";

Variant Sample(std::string_view name, ValueType type, Standing /*stands*/) {
  const std::size_t found = kFixed.find(" " + std::string(name) + "=");
  if (found != std::string_view::npos) {
    const std::size_t begin = found + name.size() + 2;
    return kFixed.substr(begin, kFixed.find(' ', begin) - begin);
  }
  const bool quoted = type == ValueType::kString || type == ValueType::kDate || name == "FCostInvoiceInterID";
  return quoted ? Variant(kText) : Variant(1);
}

class EscapeTest : public SampleTest {
 protected:
  Variant Call(ServiceObject& object, const Operation& operation) {
    std::vector<Variant> arguments = SampleArguments(operation, escaping_, [&](auto name, auto type, auto stands) {
      // A list of keys in one operation, a table's name in another.
      return name == "strFids" ? (stands == Standing::kName ? "pageTable" : "1") : Sample(name, type, stands);
    });
    return object.Invoke(operation, arguments);
  }

  std::string escaping_ = dsn_ + "Escape=Yes";
};

TEST_F(EscapeTest, KeepsTextsWholeInEveryOperation) {
  const std::string text = kLiteral;
  Run("INSERT INTO t_SystemProfile (FCategory, FKey, FValue) VALUES ('EC', 'TradeLog3003', '1'), "
      "('EC', 'TradeLog2001', '1'), ('EC', 'PickGoodsCount', '1') "
      "INSERT INTO IC_Web2ERPOrders (FID, FUniqueCode, FDeliveryProvince, FDeliveryCity, FDeliveryDistrict) "
      "VALUES (1, 101, 1, 1, 1), (2, 102, 1, 1, 1) "
      "INSERT INTO IC_Web2ERPOrdersEntry (FEntryID, FID, FSiteOrderID, FChildOrderID) "
      "SELECT FID, FID, " +
      text + ", " + text +
      " FROM IC_Web2ERPOrders "
      "INSERT INTO IC_Trade (FID, FTID) VALUES (1, " +
      text +
      ") "
      "INSERT INTO IC_Logistics (FItemID, FNumber) VALUES (1, " +
      text +
      ") "
      "CREATE TABLE pageTable (fid int, fstatus int) INSERT INTO pageTable VALUES (1, 0) "
      "SELECT * INTO Reports FROM IC_UploadWebOrderIndicator");
  // Where each text is found afterwards.
  const std::string whole = std::string(kText) + "|";
  const std::map<std::string_view, std::pair<const char*, std::string>> stored = {
      {"WriteSaveOrderLog", {"FFieldName, FNewValue FROM IC_TradeFieldLog WHERE FFieldName LIKE 'O%'", whole + whole}},
      {"WriteOPLog", {"FOldValue, FNewValue FROM IC_TradeLog WHERE FOPCode=3008", whole + whole}},
      {"ConfirmBill", {"FPickMan, FPickRem FROM IC_Web2ERPOrders WHERE FID=1", whole + whole}},
      {"SavePickingGoods", {"FPickingGoodMan FROM IC_Web2ERPOrders WHERE FID=1", "1|"}},
      {"SaveBatchNo", {"FBatchNo FROM IC_Web2ERPOrdersEntry WHERE FID=1", whole}},
      {"SetUpLogisticsNumberAndWeight", {"FLogisticsOrder FROM IC_Web2ERPOrders WHERE FID=1", whole}},
      {"SetUpLogisticsNumber", {"FLogisticsOrder FROM IC_Web2ERPOrders WHERE FID=1", whole}},
      {"UploadStatusFailure", {"FReasonsForFailure FROM IC_Web2ERPOrders WHERE FID=1", whole}},
      {"UpdateAddressReachableState", {"FNumber FROM IC_SaveAddressReachableInfo", whole}},
      {"SubMitTplOrderTask", {"FUserName, FWebTplID FROM TPLTaskFlow WHERE FTaskType=130", whole + whole}},
      {"SubMitPorTask", {"FTaskId, FUserName, FWebTplID FROM TPLTaskFlow WHERE FTaskId<>''", whole + whole + whole}},
      {"OrderRemark", {"FSellerMessage FROM IC_Web2ERPOrders WHERE FID=1", "\\" + whole}},
      {"DeRemark", {"FDeliveryRemark FROM IC_Web2ERPOrders WHERE FID=1", whole}},
      {"DeliveryRemark", {"FShippingRem FROM IC_Web2ERPOrders WHERE FID=1", "\\" + whole}},
      {"ChangeAddess",
       {"FConsignee, FZipCode, FTelephone, FMobile, FDeliveryAddress FROM IC_Web2ERPOrders WHERE FID=1",
        whole + "O'B;--|" + whole + whole + whole}},
      {"UpdateCostInvoiceStatus", {"FFeeBillNO FROM IC_Web2ERPOrders WHERE FID=1", whole}},
      {"UpdateEMSOrderStatus", {"FLogisticsOrder FROM IC_Web2ERPOrders WHERE FID=1", whole}},
      {"GetUploadDataByTab",
       {"FTaskID, FSiteOrderID, FLogisticsNumber, FLogisticsOrder, FOrderID FROM IC_UploadWebOrderIndicator",
        whole + whole + whole + whole + whole}},
  };
  std::size_t found = 0;
  for (const Operation* operation : Operations()) {
    if (operation->property) continue;
    Run("UPDATE IC_Web2ERPOrders SET FLogisticsID=1, FOrderID=" + text + ", FLogisticsOrder=" + text);
    ServiceObject object(host_, operation->service);
    // The operations of the log work on the session of another.
    if (operation->service == ServiceClass::kSaveData) Call(object, *FindOperation("DownloadWebTpls"));
    try {
      Call(object, *operation);
    } catch (const Error& error) {
      // What is compared with a number or a date is whole, and refused as no such value.
      EXPECT_EQ(error.number(), error_number::kConversionFailed) << operation->name << ": " << error.description();
    }
    const auto place = stored.find(operation->name);
    if (place == stored.end()) continue;
    ++found;
    EXPECT_EQ(Read(std::string("SELECT ") + place->second.first), place->second.second) << operation->name;
  }
  EXPECT_EQ(found, stored.size());
  // The server joins a line that ends in a backslash with the next.
  const std::string lines = "\r\na\\\r\n\r\nb\\\\\nc\\\n";
  Run("UPDATE IC_Web2ERPOrders SET FSellerMessage = ''");
  save().OrderRemark(Parameters{{"sDSN", escaping_}, {"FID", "1"}, {"Mode", 1}, {"FSellerMessage", lines}});
  EXPECT_EQ(Read("SELECT FSellerMessage FROM IC_Web2ERPOrders WHERE FID=1"), "\\" + lines + "|");
  EXPECT_EQ(get().GetPurchaseTaskInfo(escaping_, "", kText, "1", "1"), 0);
}

}  // namespace
}  // namespace tessarlorn
