#include <cstdlib>
#include <gtest/gtest.h>

#include "com/client/active_manifest.h"
#include "com/client/typed_object.h"
#include "com/neighbours/fake_component.h"

namespace tessarlorn::com_test {
namespace {

constexpr const wchar_t* kSession = L"Connect={Embedded=:memory:neighbours};User=16394;Language=CHS;Client=10.0.0.5";

Method Answering(bool flag) {
  return [flag](VARIANT& result, EXCEPINFO&) {
    result.vt = VT_BOOL;
    result.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  };
}

HRESULT Raised(EXCEPINFO& error, const wchar_t* source, const wchar_t* description) {
  error.bstrSource = SysAllocString(source);
  error.bstrDescription = SysAllocString(description);
  return DISP_E_EXCEPTION;
}

/// An object of clsSaveData with a session.
TypedObject Saves() {
  TypedObject saves(L"TessarLornPickingAndDelivery.clsSaveData");
  EXPECT_EQ(saves.Call(L"UpdateDeliveryData", {kSession, L""}).status, S_OK);
  Calls().clear();
  return saves;
}

/// What the log has to hold in this run.
std::wstring WantedAddress() {
  const wchar_t* const wanted = _wgetenv(L"TESSARLORN_WANTED_ADDRESS");
  return wanted == nullptr ? L"" : wanted;
}

Answer WriteLog(const TypedObject& saves) { return saves.Call(L"WriteOPLog", {L"1,2", L"3005", L"0", L"old", L"new"}); }

/// The library looks for its neighbours when it makes its first object.
class RegisteredTest : public testing::Test {
 protected:
  Apartment apartment_;
  FakeComponent log_{L"TessarMWebOrder.TessarMWebOrderUpdate",
                     {0x2A7B6B5A, 0x7C0E, 0x4C0F, {0x9E, 0x11, 0x51, 0x0E, 0x77, 0x6B, 0x3A, 0x01}},
                     {{L"WriteOPLog", Answering(true)},
                      {L"WriteSaveOrderLog",
                       [](VARIANT&, EXCEPINFO& error) {
                         error.scode = static_cast<HRESULT>(0x80040BB9);
                         return Raised(error, L"Order log", L"\u65e5\u5fd7 is closed");
                       }},
                      {L"IsLogEnable", [](VARIANT&, EXCEPINFO& error) {
                         error.wCode = 1004;
                         return Raised(error, L"Order log", L"No such code");
                       }}}};
  FakeComponent security_{L"QuorBase.SecurityInfo",
                          {0x2A7B6B5A, 0x7C0E, 0x4C0F, {0x9E, 0x11, 0x51, 0x0E, 0x77, 0x6B, 0x3A, 0x02}},
                          {{L"GetCurrentUserID", [](VARIANT& result, EXCEPINFO&) {
                              result.vt = VT_I4;
                              result.lVal = 77;
                              return S_OK;
                            }}}};
  const ActiveManifest manifest_;
};

TEST_F(RegisteredTest, ComponentsAreCalledByNameInTheirOrderOfArguments) {
  const TypedObject saves = Saves();
  EXPECT_EQ(WriteLog(saves).value.number(), -1);
  ASSERT_EQ(Calls().size(), 2U);
  EXPECT_EQ(Calls()[0], L"GetCurrentUserID(User=16394)");
  EXPECT_EQ(Calls()[1], L"WriteOPLog({sFID=1,2,FOPUserID=77,FOPCode=3005,FUserIP=" + WantedAddress() +
                            L",FOPTime=a date,FItemID=0,FOldValue=old,FNewValue=new}, " + kSession + L")");
  Calls().clear();

  const Answer field = saves.Call(L"WriteSaveOrderLog", {L"12", L"0", L"FShippingRem", L"x"});
  EXPECT_EQ(field.error, static_cast<HRESULT>(0x80040BB9));
  EXPECT_EQ(field.source, L"Order log");
  EXPECT_EQ(field.description, L"\u65e5\u5fd7 is closed");
  const Answer enabled = saves.Call(L"IsLogEnable", {L"3005"});
  EXPECT_EQ(enabled.error, static_cast<HRESULT>(0x800A03EC));
  EXPECT_EQ(enabled.source, L"Order log");
  EXPECT_EQ(enabled.description, L"No such code");
  EXPECT_EQ(Calls(), (std::vector<std::wstring>{L"WriteSaveOrderLog(12, 0, FShippingRem, x)", L"IsLogEnable(3005)"}));
}

// In a process of its own: nothing is registered, and the network library may not be there.
TEST(DefaultTest, TheComponentsOwnNeighboursServe) {
  const Apartment apartment;
  const ActiveManifest manifest;
  const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
  const auto ask = [&](const wchar_t* sql) { return reads.Call(L"ExecuteSQL", {kSession, sql}); };
  ask(L"create table IC_TradeLog (FOrderFID int, FOPUserID int, FOPCode int, FUserIP nvarchar(64), FOPTime datetime, "
      L"FItemID int, FOldValue nvarchar(255), FNewValue nvarchar(255))");
  const TypedObject saves = Saves();
  const Answer written = WriteLog(saves);
  EXPECT_EQ(written.description, L"");
  EXPECT_EQ(written.value.number(), -1);
  EXPECT_TRUE(Calls().empty());
  const TypedObject rows(
      ask(L"select FOPUserID, FUserIP, count(*) n from IC_TradeLog group by FOPUserID, FUserIP").value.object());
  const auto field = [&](const wchar_t* name) {
    return TypedObject(rows.Call(L"Fields", {name}).value.object()).Call(L"Value").value.text();
  };
  EXPECT_EQ(field(L"FOPUserID"), L"16394");
  EXPECT_EQ(field(L"FUserIP"), WantedAddress());
  EXPECT_EQ(field(L"n"), L"2");
}

}  // namespace
}  // namespace tessarlorn::com_test
