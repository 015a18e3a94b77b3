// What passes the door's checks leaves every statement as it is meant, and no order of a hidden shop is reached.
#include <random>
#include <set>

#include "automation/operation_arguments.h"
#include "automation/order_list.h"
#include "hosts/http/safety/order_access.h"
#include "hosts/http/safety/safe_values.h"
#include "support/sample_test.h"
#include "tsql/syntax/token.h"

namespace tessarlorn::http {
namespace {

/// With ~ between them; ^ stands for NUL.
constexpr std::string_view kHostile =
    "~ ~'~''~'''~\\'~';--~' OR '1'='1~'); DROP TABLE t;--~x' UNION SELECT 1--~\"~\"\"~O'Brien \"x\" 王; drop table t --"
    "~--~/*~*/~/*'*/~'/*~;~1;drop~1; DROP TABLE t~1--~1/**/~1 OR 1=1~1)~1) OR (1=1~(1)~(SELECT 1)~1 UNION SELECT 2~[x]"
    "~[x~x]~]];--~{FID}~{~}~%~_%~[a-z]%~’; drop~ʼ OR ʼ1ʼ=ʼ1~＇--~１~１２~1；2~１,２~NULL~null~@@version~@x~#t~##t~#t pageTable"
    "~a.b~a b~Ünï~&H10~&O7~0x10~1e5~1E5~1d5~+1~-1~--1~- 1~$1~1,000~1.5~1.~.5~-1.5~1.5.5~1 ~ 1~1\t~1 2~1\r\nGO\r\nDROP t~7"
    "~007~2147483647~2147483648~-2147483649~99999999999999999999~123456789012345678901234~1e400~1,2~1,2,~,1~1,,2~1, 2"
    "~1,2;drop~1,'2'~1,-2~1,2147483648~a,b~True~TRUE~false~yes~2024-05-06~2024-05-06T07:08:09~2024-05-06 07:08'--"
    "~2024-13-01~06/05/2024~1_a'b~1 OR 1=1_FID~1014301_F~1014301~a^b~^~\xff\xfe~\xc0\xa7~\xe7\x8e~\r\nGO\r\n~\\\r\n~sElect"
    "~N'x'~x\\\n'--";
/// What the contracts mean, in every way in which it can lead an operation.
constexpr std::string_view kMeant = "~7~-7~0~1~-1~1,2~1002~1e5~7_F~text~2024-05-06~True~false~pageTable";

std::vector<std::string> Hostile() {
  std::vector<std::string> texts;
  for (const std::string_view text : Split(kHostile, '~')) texts.push_back(ReplaceAll(text, "^", {"\0", 1}));
  std::mt19937 random(20240506);
  constexpr std::string_view kSigns = "'\"[];-/*,() 019eE.xN@#&%_\\\n";
  for (int i = 0; i < 30; ++i) {
    std::string& text = texts.emplace_back();
    for (std::size_t length = 1 + random() % 12; length > 0; --length) text += kSigns[random() % kSigns.size()];
  }
  return texts;
}

/// The tokens of the batches: words and signs as they are, of literals only that they are text or number.
std::string Shape(const std::vector<std::string>& batches) {
  tsql::NameTable names;
  std::string shape;
  for (const std::string& batch : batches) {
    tsql::Tokens tokens;
    tsql::TokenizeDefinition(batch, names, tokens);
    for (const tsql::Token& token : tokens.tokens) {
      const bool number = token.kind >= tsql::TokenKind::kInteger && token.kind <= tsql::TokenKind::kFloat;
      const bool text = token.kind == tsql::TokenKind::kString || token.kind == tsql::TokenKind::kNString;
      shape.append(" ").append(number ? "1" : text ? "''" : token.text);
    }
  }
  return shape;
}

Variant Usual(std::string_view name, ValueType type, Standing stands) {
  if (stands == Standing::kSql) return {};
  if (name == "FEMSStatus" || name == "PrintID") return name == "PrintID" ? 10143012 : 3;
  if (name == "key" || name == "sFKey") return name == "key" ? "1001" : "1014301_FStockID";
  if (type == ValueType::kBoolean || stands == Standing::kName) return stands == Standing::kName ? "pageTable" : "True";
  if (stands == Standing::kKeyList || name == "sFID") return type == ValueType::kLong ? "1" : "1,2";
  if (type == ValueType::kDate) return "2024-05-06";
  return type == ValueType::kString ? Variant(name) : Variant(stands == Standing::kNowhere ? 1 : 71);
}

/// Arguments with usual values, but `value` in the wanted place; `places` are all that there are.
std::vector<Variant> Fill(const Operation& operation, const std::string& dsn, std::vector<Standing>& places,
                          std::optional<std::size_t> wanted = {}, const std::string& value = {}) {
  places.clear();
  return SampleArguments(operation, dsn, [&](std::string_view name, ValueType type, Standing stands) {
    places.push_back(stands);
    return wanted == places.size() - 1 ? Variant(value) : Usual(name, type, stands);
  });
}

class SafetyTest : public RecordingTest {};

TEST_F(SafetyTest, WhatPassesTheCheckChangesNoStatement) {
  std::size_t passed = 0;
  for (const Operation* const operation : Operations()) {
    std::vector<Standing> places;
    Fill(*operation, "", places);
    for (std::size_t i = 0; i < places.size(); ++i) {
      const auto shape = [&](const std::string& text) -> std::optional<std::string> {
        std::vector<Variant> arguments = Fill(*operation, std::string(kDsn) + ";Escape=Yes", places, i, text);
        if (FindRefusedValue(*operation, arguments, false)) return std::nullopt;
        TheRecording().events.clear();
        TheRecording().answer = AnswerOneRow;
        ErrorOf([&] { ServiceObject(host_, operation->service).Invoke(*operation, arguments); });
        const std::string sent = Shape(TheRecording().Batches());
        // One table's name is as good as the other.
        return places[i] == Standing::kName ? ReplaceAll(sent, " " + text + " ", " pageTable ") : sent;
      };
      std::set<std::optional<std::string>> meant;
      for (const std::string_view text : Split(kMeant, '~')) meant.insert(shape(std::string(text)));
      for (const std::string& text : Hostile()) {
        const auto sent = shape(text);
        passed += sent && !sent->empty() ? 1 : 0;
        ASSERT_TRUE(!sent || meant.count(sent) > 0) << operation->name << " " << i << " " << text << *sent;
      }
    }
  }
  EXPECT_GT(passed, 3000U);
}

TEST_F(SafetyTest, ValuesAreRefusedByName) {
  const std::string big = ReplaceAll(std::string(100'001, ','), ",", "1,") + "1";
  const Vector weights{Dictionary{}, Dictionary{{"FWeight", true}}};
  const std::tuple<const char*, std::vector<Variant>, const char*> cases[] = {
      {"Delivery", {Dictionary{{"FID", "1;drop"}}}, "dctPara.FID is a list of keys; \"1;drop\" is no whole number"},
      {"Delivery", {Dictionary{{"FIDs", "1"}}}, "dctPara has no key \"FIDs\""},
      {"Delivery", {Dictionary{{"FID", Null{}}}}, "dctPara.FID is null"},
      {"SaveLogWeight",
       {"", weights},
       "vctPara[2].FWeight is a number; \"True\" is none in plain digits, or too large"},
      {"ExecuteSQL", {"", ""}, "StrSql is SQL, which you may not pass"},
      {"GetListData", {"", Dictionary{{"icboTpl", " "}}}, "Filter.icboTpl is SQL, which you may not pass"},
      {"GetWebShopType", {"", std::string(4001, 'x')}, "sFWebshopID has more than 4000 characters"},
      {"GetUploadDataByFID", {"", big}, "strFids has more than 100000 keys"},
  };
  for (const auto& [name, arguments, expected] : cases) {
    const auto refused = FindRefusedValue(*FindOperation(name), arguments, false);
    EXPECT_EQ(refused ? refused->path + " " + refused->why : "", expected);
    const bool is_sql = refused && refused->wants_sql;
    EXPECT_EQ(is_sql, !FindRefusedValue(*FindOperation(name), arguments, true)) << name;
  }
}

/// What all operations send when every text column holds `stored`, but settings and the layout, which holds SQL.
std::vector<std::string> ShapesWithStored(const Variant& stored) {
  SampleDatabase database(8, 5);
  Connection& connection = database.connection();
  connection.Execute("CREATE TABLE pageTable (fid int, fstatus int) INSERT INTO pageTable VALUES (1, 0)");
  const RecordsetPtr columns = connection.Query(
      "SELECT 'UPDATE [' + TABLE_NAME + '] SET [' + COLUMN_NAME + '] = LEFT(@text, ' + CAST(CHARACTER_MAXIMUM_LENGTH AS "
      "varchar(9)) + ')' AS Change FROM INFORMATION_SCHEMA.COLUMNS WHERE DATA_TYPE = 'nvarchar' AND "
      "CHARACTER_MAXIMUM_LENGTH > 0 AND TABLE_NAME NOT IN ('t_SystemProfile', 'ICClassTableInfo')");
  for (; !columns->eof(); columns->MoveNext()) {
    SqlParameter text[] = {{"@text", "nvarchar(400)", stored}};
    // Views refuse, and columns whose values differ.
    ErrorOf([&] { connection.Execute({columns->Get("Change").ToText(), text}); });
  }
  std::vector<std::string> shapes;
  for (const Operation* const operation : Operations()) {
    std::vector<Standing> places;
    std::vector<Variant> arguments = Fill(*operation, database.Dsn(16394, "Escape=Yes"), places);
    shapes.push_back(Shape(StatementsOf(
        [&] { ErrorOf([&] { ServiceObject(TestHost(), operation->service).Invoke(*operation, arguments); }); })));
  }
  return shapes;
}

TEST(StoredTextTest, ChangesNoStatement) { EXPECT_EQ(ShapesWithStored("x';--[\""), ShapesWithStored("harmless")); }

/// User 7 may see shop 101, which has the orders 1 and 2, and not shop 102 of order 3. What belongs to an order has its
/// key as last digit. The waybill X is that of 2 and 3.
class OrderAccessTest : public SampleTest {
 protected:
  OrderAccessTest() {
    Run("INSERT t_SystemProfile (FCategory, FKey, FValue) VALUES ('EC', 'WebShopAccess', '1') "
        "INSERT t_Group (FGroupID, FUserID) VALUES (1, 1) "
        "INSERT IC_WebShopAccessData (FUserID, FWebShopID, FIsAccess) VALUES (7, 101, 1), (7, 102, 0), (8, 102, 1) "
        "INSERT IC_Web2ERPOrders (FID, FWebshopID, FUniqueCode, FLogisticsOrder, FFeeBillNO) VALUES (1, 101, 1001, 'W1', "
        "'501'), (2, 101, 1002, 'X', '502'), (3, 102, 1003, 'X', '503'), (4, 101, 1004, '', '') "
        "INSERT IC_Web2ERPOrdersEntry (FEntryID, FID) VALUES (11, 1), (12, 2), (13, 3)");
  }
};

TEST_F(OrderAccessTest, HoldsForEveryValueThatNamesOrders) {
  constexpr std::string_view kNames =
      " FEntryID EntryID key lInoviceID FLogisticsOrder(SavePickingGoods) "
      "FLogisticsOrder(GetOrderInfoByLogisticsOrder) ";
  for (const Operation* const operation : Operations()) {
    bool named = false;
    std::vector<Variant> arguments = SampleArguments(*operation, "", [&](std::string_view name, auto, Standing stands) {
      const std::string here = " " + std::string(name);
      const bool names = stands == Standing::kKeyList || (name.ends_with("FID") && name != "sInterFID") ||
                         kNames.find(here + " ") != std::string_view::npos ||
                         kNames.find(here + "(" + std::string(operation->name) + ")") != std::string_view::npos;
      named = named || names;
      return names ? "3" : "x";
    });
    if (operation->contract->reaches_any_order) continue;
    for (const int user : {1, 7}) {
      const OrderAccess access = CutHiddenOrders(*operation, arguments, user, database_.connection());
      EXPECT_EQ(access.hidden, std::vector<std::string>(named && user == 7 ? 1 : 0, "3")) << operation->name;
    }
  }
}

TEST_F(OrderAccessTest, TakesHiddenOrdersOutOfCopies) {
  const auto orders = std::make_shared<Dictionary>(Dictionary{{"sDSN", "x"}, {"FID", "3,1,9,02,1"}});
  const Vector lines{Dictionary{{"FEntryID", 13}}, Dictionary{{"FEntryID", 12}}, Dictionary{{"FBatchNo", 1}}};
  const Vector failures{Dictionary{{"FailureFID", 3}}, Dictionary{{"FailureFID", 2}}};
  const auto parcel = [](const char* number) { return Dictionary{{"FLogisticsOrder", number}}; };
  // Orders, what is hidden, "!" for single, "*" for unbounded, and how many statements ask.
  std::tuple<const char*, std::vector<Variant>, const char*> cases[] = {
      {"Delivery", {orders}, "1 2 / 3 9 (2)"},
      {"GetEntryData", {"x", Dictionary{{"FID", 3}}}, "/ 3!(2)"},
      {"SaveBatchNo", {"x", lines}, "2 / 13 (2)"},
      {"SetUpLogisticsNumber", {"x", Dictionary{{"01003", "W"}, {"1001", "W"}}}, "1 / 01003 (2)"},
      {"UploadStatusFailure", {Dictionary{{"ErrInfo", failures}}}, "2 / 3 (2)"},
      {"SavePickingGoods", {parcel("1002")}, "2 / (2)"},
      {"SavePickingGoods", {parcel("1003.0")}, "/ 1003.0!(1)"},
      {"SavePickingGoods", {parcel("X")}, "/ X!(2)"},
      {"SavePickingGoods", {Dictionary{}}, "/ !(1)"},
      {"UpdateAfterDeleteBill", {"x", "501,503,0"}, "1 / 503 0 (2)"},
      {"UpLoadStatusForManualAndClosed", {"x"}, "/*(1)"},
  };
  std::string cut;
  const auto expect = [&](const char* name, std::vector<Variant>& arguments, const char* expected) {
    OrderAccess access;
    const auto sent =
        StatementsOf([&] { access = CutHiddenOrders(*FindOperation(name), arguments, 7, database_.connection()); });
    std::string said;
    for (const std::int32_t order : access.orders) said += std::to_string(order) + " ";
    said += "/";
    for (const std::string& one : access.hidden) said += " " + one;
    said += access.single ? "!" : access.unbounded ? "*" : " ";
    EXPECT_EQ(said + "(" + std::to_string(sent.size()) + ")", expected) << name;
  };
  for (auto& [name, arguments, expected] : cases) expect(name, arguments, expected);
  EXPECT_EQ(std::get<1>(cases[0])[0].ToDictionary()->GetValue("FID").ToText(), "1,02,1");
  EXPECT_EQ(std::get<1>(cases[2])[1].ToVector()->size(), 2U);
  EXPECT_FALSE(std::get<1>(cases[3])[1].ToDictionary()->Exists("01003"));
  std::vector<Variant> again = {orders};
  Run("UPDATE t_SystemProfile SET FValue = '0' WHERE FKey = 'WebShopAccess'");
  expect("Delivery", again, "3 1 9 2 / (1)");
  EXPECT_EQ(orders->GetValue("FID").ToText(), "3,1,9,02,1");
}

TEST(SplitByOrderTest, LeavesOneOrderInEachCall) {
  const Vector failures{Dictionary{{"FailureFID", 3}}, Dictionary{{"FailureFID", 4}}};
  for (const auto& [name, key, value] : {std::tuple{"Delivery", "FID", Variant("3,4")},
                                         std::tuple{"UploadStatusFailure", "ErrInfo", Variant(failures)}}) {
    const OrderList list = FindOrderList(*FindOperation(name)).value();
    const Variant arguments[] = {Dictionary{{key, value}}};
    std::vector<std::string> orders;
    SplitByOrder(list, SplitByOrder(list, arguments, orders).at(1), orders);
    EXPECT_EQ(orders, std::vector<std::string>{"4"}) << name;
  }
}

}  // namespace
}  // namespace tessarlorn::http
