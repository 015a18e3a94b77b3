// Databases behind ADO: what the library hands out of them, what it does there, and how their errors arrive.
#include <gtest/gtest.h>

#include "com/client/typed_object.h"
#include "com_base/errors.h"
#include "drivers_ado/ado_stand_in.h"
#include "support/test_host.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::com_test {
namespace {

/// A copy of the sample orders, which the library reaches over ADO and this process does without.
class AdoTest : public testing::Test {
 protected:
  AdoTest() : reads_(L"TessarLornPickingAndDelivery.clsGetData"), saves_(L"TessarLornPickingAndDelivery.clsSaveData") {
    const wchar_t* const folder = _wgetenv(L"TESSARLORN_TEST_FOLDER");
    if (folder == nullptr) throw std::runtime_error("TESSARLORN_TEST_FOLDER is not set");
    const std::wstring path = std::wstring(folder) + L"\\ado.db";
    for (const wchar_t* const end : {L"-wal", L"-shm"}) DeleteFileW((path + end).c_str());
    if (CopyFileW((std::wstring(folder) + L"\\sample.db").c_str(), path.c_str(), FALSE) == 0) {
      throw std::runtime_error("the sample orders are missing");
    }
    const std::string database = "Embedded=" + FromUtf16(std::u16string(path.begin(), path.end()));
    orders_ = OpenConnection(database);
    session_ = ToWide("Connect={" + AdoStandIn::StringOf(database) + "};User=16394;Client=10.0.0.5");
  }

  static std::wstring ToWide(const std::string& text) { return com::ToWide(text); }
  std::string Ask(const std::string& sql) { return orders_->Execute(sql)->Get(0).ToText(); }
  Value Keys(std::initializer_list<std::pair<const wchar_t*, Value>> keys) {
    const TypedObject dictionary(L"Mirel.Dictionary");
    dictionary.Call(L"Add", {L"sDSN", session_});
    for (const auto& [key, value] : keys) dictionary.Call(L"Add", {key, value});
    return dictionary.get();
  }

  const AdoStandIn ado_;
  TypedObject reads_;
  TypedObject saves_;
  std::unique_ptr<Connection> orders_;
  std::wstring session_;
};

TEST_F(AdoTest, ResultsAreAdosOwnRecordsets) {
  const Answer detached = reads_.Call(L"ExecuteSQL", {session_, L"select 1 a"});
  ASSERT_NE(detached.value.object(), nullptr);
  EXPECT_FALSE(AdoStandIn::IsAttached(detached.value.object()));
  const Answer attached = reads_.Call(L"GetWebShopData", {Keys({})});
  ASSERT_NE(attached.value.object(), nullptr);
  EXPECT_TRUE(AdoStandIn::IsAttached(attached.value.object())) << "it is handed out as ADO produced it";
}

TEST_F(AdoTest, OwnRecordsetsBecomeAdos) {
  const Answer own = reads_.Call(L"ExecuteSQL", {L"Embedded=:memory:", L"select nchar(24352) a"});
  const Answer ados = TypedObject(own.value.object()).Call(L"AsADO");
  ASSERT_NE(ados.value.object(), nullptr);
  EXPECT_NE(AdoStandIn::Persisted(ados.value.object()).find("<z:row a='\u5F20'/>"), std::string::npos);
}

TEST_F(AdoTest, ErrorsAreAdosOwn) {
  const Answer wrong = reads_.Call(L"ExecuteSQL", {session_, L"select * from nowhere"});
  EXPECT_EQ(wrong.error, static_cast<HRESULT>(0x80040E37));
  EXPECT_EQ(wrong.source, L"TessarLorn embedded database");
  EXPECT_EQ(wrong.description, L"Invalid object name 'nowhere'.");
  const Answer named = reads_.Call(L"GetEntryData", {session_, Keys({{L"FID", L"first"}})});
  EXPECT_EQ(named.error, static_cast<HRESULT>(0x80040E14));
  EXPECT_EQ(named.source, L"TessarLornPickingAndDelivery.clsGetData.GetEntryData");
  EXPECT_EQ(named.description, L"Invalid column name 'first'.");
}

}  // namespace
}  // namespace tessarlorn::com_test
