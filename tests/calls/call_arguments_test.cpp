#include "hosts/calls/call_arguments.h"

#include <gtest/gtest.h>

#include "hosts/calls/json_arguments.h"
#include "hosts/calls/json_text.h"
#include "hosts/calls/wrong_call.h"

namespace tessarlorn {
namespace {

/// The arguments as JSON, or "fault: …".
std::string Read(std::string_view operation, const std::vector<std::string>& words, std::string_view json = "",
                 std::string_view dsn = "D") {
  try {
    const Variant from_json = json.empty() ? Variant() : ReadJson(json, "args");
    std::string text;
    for (const Variant& value : ReadCallArguments(RequireOperation(operation), from_json, words, dsn)) {
      text += (text.empty() ? "" : " ") + JsonText(value);
    }
    return text;
  } catch (const WrongCall& error) {
    return std::string("fault: ") + error.what();
  }
}

TEST(CallArgumentsTest, FillsEachArgumentFromWordsAndJson) {
  EXPECT_EQ(Read("NewGetWeightByFID", {"SFID=12"}), R"("D" "12")");
  EXPECT_EQ(Read("NewGetWeightByFID", {"sDsn=a=b", "sfid=12"}), R"("a=b" "12")");
  EXPECT_EQ(Read("NewGetWeightByFID", {"sDsn=", "sFID="}, "", ""), R"("" "")");
  EXPECT_EQ(Read("SubMitTplOrderTask", {"sFID=1", "tplType=2", "sUserName="}), R"("D" "1" "2" "" null)");
  EXPECT_EQ(Read("CheckWebShopTypeSameByOrders", {"strIDs=1"}), R"("D" "1" null)");
  // Nothing stays Nothing where it has no connection string.
  EXPECT_EQ(Read("GetListData", {}), R"("D" null)");
  EXPECT_EQ(Read("GetListData", {"Filter={}"}), R"("D" {})");
  EXPECT_EQ(Read("GetListData", {"filter.FOrderStatus=2", "Filter.OtherFilterOne=a.b=1"}),
            R"("D" {"FOrderStatus":"2","OtherFilterOne":"a.b=1"})");
  EXPECT_EQ(Read("ConfirmBill", {"dctPara.FPickRem="}), R"({"FPickRem":"","sDSN":"D"})");
  EXPECT_EQ(Read("ConfirmBill", {"dctPara.sDSN="}), R"({"sDSN":""})");
  EXPECT_EQ(Read("SavePickingGoods", {}), R"({"sProps":"D"})");
  EXPECT_EQ(Read("MarkPickingGoodsStatus", {}), R"({"sDsn":"D"})");
  EXPECT_EQ(Read("SetUpLogisticsNumber", {"dctPara.28.5=SF 1", "dctPara.x=[1]"}), R"("D" {"28.5":"SF 1","x":"[1]"})");
  EXPECT_EQ(Read("UploadStatusFailure", {R"(dctPara.ErrInfo=[{"FailureFID":1.0}])"}),
            R"({"ErrInfo":[{"FailureFID":1.0}],"sDSN":"D"})");
  EXPECT_EQ(Read("SaveLogWeight", {}, R"({"VCTPARA":[{"FID":1}]})"), R"("D" [{"FID":1}])");
  // Words win over the file; keys are laid over whole arguments, whatever the order.
  EXPECT_EQ(Read("Delivery", {"dctPara.FID=2"}, R"({"dctPara":{"FID":1}})"), R"({"FID":"2","sDSN":"D"})");
  EXPECT_EQ(Read("Delivery", {"dctPara.FID=2", R"(dctPara={"sDSN":"E"})"}), R"({"sDSN":"E","FID":"2"})");
}

TEST(CallArgumentsTest, NamesWhatIsAtFault) {
  EXPECT_EQ(Read("ConfirmBill", {}, "", ""),
            "fault: ConfirmBill wants a connection string: give --dsn or set TESSARLORN_DSN");
  struct Case {
    const char* operation;
    std::vector<std::string> words;
    std::string fault;
    const char* json = "";
  };
  for (const Case& item : {
           Case{"UpdateAddressReachableState",
                {"sFID=1"},
                "UpdateAddressReachableState wants the argument lType, a Long"},
           Case{"UpdateDeliveryData", {}, "UpdateDeliveryData wants the argument sFID, a String; it may be empty"},
           Case{"Deliver", {}, "unknown operation Deliver; did you mean Delivery?"},
           Case{"clsGetData.Delivery", {}, "unknown operation clsGetData.Delivery; did you mean Delivery?"},
           Case{"xyzzy", {}, "unknown operation xyzzy; 'tessarlorn ops' lists them"},
           Case{"TransMode", {"a=1"}, "TransMode takes no arguments"},
           Case{"Delivery", {"FID"}, "\"FID\" is neither argument=value nor argument.Key=value"},
           Case{"Delivery", {"FID=1"}, "Delivery has no argument FID; did you mean dctPara.FID?"},
           Case{"Delivery", {"dctPar.FID=1"}, "Delivery has no argument dctPar; did you mean dctPara?"},
           Case{"Delivery", {"dctPara.fid=1"}, "dctPara has no key fid; did you mean FID?"},
           Case{"Delivery", {"dctPara.FID=1", "DCTPARA.FID=2"}, "DCTPARA.FID is given twice"},
           Case{"Delivery", {"dctPara=12"}, "dctPara is a Dictionary: give it as a JSON object"},
           Case{"Delivery", {"dctPara={\"FID\":1,\"FIDD\":2}"}, "dctPara has no key FIDD; did you mean FID?"},
           Case{"Delivery", {"dctPara={\"FID\":1,}"}, "dctPara:1:10: syntax error"},
           Case{"SaveLogWeight", {"vctPara={}"}, "vctPara is a Vector: give it as a JSON array"},
           Case{"SaveLogWeight", {"vctPara.FID=1"}, "vctPara is a Vector and has no keys"},
           Case{"SaveLogWeight", {"vctPara=[{},{\"Fid\":1}]"}, "vctPara[2] has no key Fid; did you mean FID?"},
           Case{"UploadStatusFailure", {"dctPara.ErrInfo=x"}, "dctPara.ErrInfo is a Vector: give it as a JSON array"},
           Case{"UploadStatusFailure",
                {},
                "dctPara.ErrInfo wants a Vector, not Dictionary",
                R"({"dctPara":{"ErrInfo":{}}})"},
           Case{"UploadStatusFailure",
                {},
                "dctPara.ErrInfo[1] has no key FailureFid; did you mean FailureFID?",
                R"({"dctPara":{"ErrInfo":[{"FailureFid":1}]}})"},
           Case{"Delivery", {}, "the JSON of the arguments wants a Dictionary, not Vector", "[1]"},
           Case{"Delivery", {}, "dctPara wants a Dictionary, not Null", R"({"dctPara":null})"},
           Case{"Delivery", {"dctPara.FID=1"}, "dctPara wants a Dictionary, not Long", R"({"dctPara":5})"},
           Case{"Delivery", {}, "argument DctPara is given twice", R"({"dctPara":{},"DctPara":{}})"},
       }) {
    const std::string answer = Read(item.operation, item.words, item.json);
    EXPECT_EQ(answer.rfind("fault: " + item.fault, 0), 0U) << answer;
  }
}

}  // namespace
}  // namespace tessarlorn
