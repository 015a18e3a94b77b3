// Carriers, accounts with them, and waybills: a table of calls, what each answers, and what it leaves behind.
#include "support/sample_test.h"
#include "tessarlorn/operations.h"

namespace tessarlorn {
namespace {

constexpr const char* kOrders =
    "FID,FLogisticsID,FLogisticsOrder,FEMSStatus,FPrintExpressCount from IC_Web2ERPOrders where FID<4 order by FID";
constexpr const char* kLog = "FOrderFID,FFieldName,FNewValue from IC_TradeFieldLog order by FID";
constexpr const char* kExtension =
    "FID,FOrderID,FParcelQuantity,FInsuredValue,FJzService from IC_Web2ERPOrdersEx order by FID";
constexpr const char* kUnchanged = "1|5|W1|2|0|2|6|W2|0|0|3|5|W3|0|1|";

struct Call {
  const char* operation;
  Dictionary keys;
  /// Of the error, "number Source: description".
  std::string answer;
  /// What a SELECT finds afterwards.
  const char* select = nullptr;
  std::string found = {};
};

class WaybillsTest : public SampleTest {
 protected:
  WaybillsTest() {
    dsn_ = database_.Dsn(7, "Language=CHT;");
    Run(R"(
insert into IC_Area(FID,FName,FName_CHT) values (44,N'广东',N'廣東')
insert into IC_Logistics(FItemID,FNumber,FName,FName_CHT,FIsElectronic,FIsDefault)
  values (5,'SF',N'顺',N'順',1,1),(6,'EM',N'邮',N'郵',1,0),(7,'AB',N'安',N'安',0,0)
insert into IC_WebshopToStorage(FID,FWebShopID,FOwnLogisticsID) values (1,101,6),(2,102,5),(3,103,0)
insert into IC_LogisticsAccount(FLogisticsID,FWebShopID,FAccount,FSecret,FCustomerCode,FMonthlyCode,FIsStarted,FTemplate,
  FSender,FSenderPhone,FSenderProvince,FSenderAddress)
values (5,0,'all','hidden','C0','M0',1,'T0','Us','1',44,'8'),(5,102,'own','hidden','C2','M2',0,'T2','Shop','2',0,'9'),
       (6,101,'ems','hidden','C6','M6',1,'T6','','',0,''),(7,0,'ab','hidden','C7','',1,'','','',0,'')
insert into IC_JzService(FCode) values ('JZ1'),('JZ2')
insert into IC_SaveAddressReachableInfo(FDeliveryProvince,FDeliveryCity,FDeliveryDistrict,FNumber,FArrive)
  values ('44','4403','440303','EM',0),('44','4403','440303','SF',1),('44','4403','440304','AB',0)
insert into IC_Web2ERPOrders(FID,FOrderID,FOrderStatus,FLogisticsID,FLogisticsOrder,FEMSStatus,FPrintExpressCount,
  FDeliveryProvince,FDeliveryCity,FDeliveryDistrict,FOrderDate,FUniqueCode)
values (1,'O1',2,5,'W1',2,0,44,4403,440303,'2026-01-01',1001),(2,'O2',6,6,'W2',0,0,44,4403,440303,'2026-01-02',1002),
       (3,'O3',14,5,'W3',0,1,44,4403,440304,'2026-01-03',1003),(4,'O4',14,0,'1002',0,0,0,0,0,'2026-01-09',1004),
       (5,'O5',14,0,'W3',0,0,0,0,0,'2026-01-04',1005),(6,'O6',6,7,'1002',0,0,0,0,0,'2026-01-02',1006)
insert into IC_Web2ERPOrdersEx(FID,FOrderID,FAddressReachable,FParcelQuantity) values (1,'O1',1,4),(2,'O2',1,null)
)");
  }

  std::string Answer(const Call& call) {
    const Operation& operation = *FindOperation(call.operation);
    Dictionary keys{{"sDSN", dsn_}};
    for (const auto& [key, value] : call.keys) keys.SetValue(key, value);
    std::vector<Variant> arguments = {operation.arguments()[0].type == ValueType::kString ? Variant(dsn_)
                                                                                          : Variant(keys)};
    try {
      return Told(ServiceObject(host_, operation.service).Invoke(operation, arguments));
    } catch (const Error& error) {
      return std::to_string(error.number()) + " " + error.source() + ": " + error.description();
    }
  }

  void Check(const std::vector<Call>& calls) {
    for (const Call& call : calls) {
      const std::string name = std::string(call.operation) + " " + Told(call.keys);
      EXPECT_EQ(Answer(call), call.answer) << name;
      if (call.select != nullptr) {
        EXPECT_EQ(Read(std::string("select ") + call.select), call.found) << name;
      }
    }
  }
};

const std::string kRefused = ": Invalid procedure call or argument: ";

TEST_F(WaybillsTest, ChooseCarriers) {
  Check({
      {"GetLogisticsCompany", {}, "7 AB 安 0 0 | 6 EM 郵 1 0 | 5 SF 順 1 1 | "},
      {"GetLogisticsCompany", {{"FID", "1,4"}}, "7 AB 安 0 0 | 5 SF 順 1 1 | "},
      {"GetLogisticsCompany", {{"FID", "3"}}, "6 EM 郵 1 0 | 5 SF 順 1 1 | "},
      {"SetUpLogisticsCompany", {{"FID", "1"}, {"FLogisticsID", ""}}, "False"},
      {"SetUpLogisticsCompany",
       {{"FID", "1,2"}, {"FLogisticsID", 99}},
       "5 SetUpLogisticsCompany" + kRefused + "there is no carrier 99",
       kOrders,
       kUnchanged},
      {"SetUpLogisticsCompany", {{"FID", "1,3"}, {"FLogisticsID", "5"}}, "True", kOrders, kUnchanged},
      {"SetUpLogisticsCompany",
       {{"FID", "3,2,1"}, {"FLogisticsID", 6}},
       "True",
       kOrders,
       "1|6||0|0|2|6|W2|0|0|3|5|W3|0|1|"},
      {"SetUpLogisticsCompany",
       {{"FID", "2"}, {"FLogisticsID", 0}},
       "True",
       kLog,
       "1|FLogisticsID|5->6|2|FLogisticsID|6->0|"},
      {"GetLogisticsCompany",
       {{"FID", ""}},
       "7 AB 安 0 0 | 6 EM 郵 1 0 | 5 SF 順 1 1 | ",
       "FID,FAddressReachable from IC_Web2ERPOrdersEx order by FID",
       "1|null|2|null|"},
  });
}

TEST_F(WaybillsTest, TellAccounts) {
  const std::string own =
      "Account=own MonthlyCode=M2 Sender=Shop SenderPhone=2 SenderProvince= SenderCity= SenderDistrict= SenderAddress=9 Template=T2 ";
  const std::string all =
      "Account=all MonthlyCode=M0 Sender=Us SenderPhone=1 SenderProvince=廣東 SenderCity= SenderDistrict= SenderAddress=8 Template=T0 ";
  Check({
      {"GetStartElectronicLogistics", {}, "6 EM 郵 101 ems T6 | 5 SF 順 101 all T0 | 5 SF 順 103 all T0 | "},
      {"GetStartElectronicLogistics", {{"FWebShopID", 102}}, ""},
      {"GetJDCustomerCode", {{"FWebShopID", 101}}, "C6"},
      {"GetJDCustomerCode", {{"FWebShopID", "102"}}, "C2"},
      {"GetJDCustomerCode", {{"FWebShopID", 103}}, ""},
      {"GetBigAccountInfo", {{"FLogisticsID", 5}}, all},
      {"GetBigAccountInfo", {{"FLogisticsID", 5}, {"FWebShopID", 103}}, all},
      {"GetBigAccountInfo", {{"FLogisticsID", 5}, {"FWebShopID", 102}}, own},
      {"GetBigAccountInfo", {{"FLogisticsID", 6}, {"FWebShopID", 102}}, "Nothing"},
      {"IsThermalPrinting", {}, "False"},
  });
  Run("insert into t_SystemProfile(FCategory,FKey,FValue) values ('EC','ThermalPrinting','1')");
  Check({{"IsThermalPrinting", {}, "True"}});
}

TEST_F(WaybillsTest, FollowTheParcel) {
  const std::string ems = "5 UpdateEmsPrintStatus" + kRefused;
  Check({
      {"GetOrderInfoByLogisticsOrder",
       {{"FLogisticsOrder", "W1"}},
       "FID=1 FOrderID=O1 FOrderStatus=2 FLogisticsID=5 FLogisticsName=順 FConsignee= FWeight=0.0000 FPIckingGoodsStatus=0 FWeighttingStatus=0 FParcelQuantity=4 Count=1 "},
      // A waybill of a delivered order and of one that is not, and the unique code of another that is not.
      {"GetOrderInfoByLogisticsOrder",
       {{"FLogisticsOrder", "1002"}},
       "FID=6 FOrderID=O6 FOrderStatus=6 FLogisticsID=7 FLogisticsName=安 FConsignee= FWeight=0.0000 FPIckingGoodsStatus=0 FWeighttingStatus=0 FParcelQuantity=1 Count=3 "},
      {"GetOrderInfoByLogisticsOrder",
       {{"FLogisticsOrder", "W3"}},
       "FID=5 FOrderID=O5 FOrderStatus=14 FLogisticsID=0 FLogisticsName= FConsignee= FWeight=0.0000 FPIckingGoodsStatus=0 FWeighttingStatus=0 FParcelQuantity=1 Count=2 "},
      {"GetOrderInfoByLogisticsOrder", {{"FLogisticsOrder", "99999999999999999999999999999999999999999"}}, "Nothing"},
      {"UpdateEMSOrderStatus", {{"FID", "1"}, {"FEMSStatus", 5}}, ems + "FEMSStatus 5 is not from 0 to 4"},
      {"UpdateEMSOrderStatus",
       {{"FID", "1,2"}, {"FEMSStatus", 2}, {"FLogisticsOrder", "Z"}},
       ems + "one FLogisticsOrder for 2 orders",
       kOrders,
       kUnchanged},
      {"UpdateEMSOrderStatus",
       {{"FID", "1"}, {"FEMSStatus", "2"}, {"FLogisticsOrder", "Z1"}},
       "True",
       kLog,
       "1|FLogisticsOrder|Z1|"},
      {"UpdateEMSOrderStatus",
       {{"FID", "1,3"}, {"FEMSStatus", 3}},
       "True",
       kOrders,
       "1|5|Z1|3|1|2|6|W2|0|0|3|5|W3|3|2|"},
  });
}

TEST_F(WaybillsTest, StoreWhatTheShipmentHas) {
  Check({
      {"SetSFPackageQuantity",
       {{"FID", "1"}, {"FParcelQuantity", 301}},
       "5 SetSFPackageQuantity" + kRefused + "FParcelQuantity 301 is not from 1 to 300"},
      {"SetSFPackageQuantity",
       {{"FID", "2,3,77"}, {"FParcelQuantity", "300"}},
       "True",
       kExtension,
       "1|O1|4|null|null|2|O2|300|null|null|3|O3|300|null|null|"},
      {"WriteInsuredAmount",
       {{"FID", "1"}, {"FInsuredValue", "-0.001"}},
       "5 WriteInsuredAmount" + kRefused + "FInsuredValue -0.001 is below 0"},
      {"WriteInsuredAmount", {{"FID", "1"}, {"FInsuredValue", "much"}}, "13 WriteInsuredAmount: Type mismatch"},
      {"WriteInsuredAmount",
       {{"FID", "1,2"}, {"FInsuredValue", 2.675}},
       "True",
       kExtension,
       "1|O1|4|2.6800|null|2|O2|300|2.6800|null|3|O3|300|null|null|"},
      {"WriteJzservice", {{"FID", "1"}}, "False"},
      {"WriteJzservice",
       {{"FID", "1"}, {"FJzService", "JZ1,x, y"}},
       "5 WriteJzservice" + kRefused + "there is no service x,y"},
      {"WriteJzservice",
       {{"FID", "1,4"}, {"FJzService", "jz2, JZ1,JZ2"}},
       "True",
       kExtension,
       "1|O1|4|2.6800|JZ2,JZ1|2|O2|300|2.6800|null|3|O3|300|null|null|4|O4|null|null|JZ2,JZ1|"},
      {"WriteJzservice",
       {{"FID", "4"}, {"FJzService", ""}},
       "True",
       "FJzService from IC_Web2ERPOrdersEx where FID=4",
       "|"},
  });
}

}  // namespace
}  // namespace tessarlorn
