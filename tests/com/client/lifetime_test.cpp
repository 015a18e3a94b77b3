#include <gtest/gtest.h>
#include <thread>

#include "com/client/typed_object.h"
#include "hosts/objects/automation_object.h"

namespace tessarlorn::com_test {
namespace {

constexpr const wchar_t* kLibrary = L"TessarLornPickingAndDelivery.dll";

template <typename Function>
Function Entry(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(kLibrary), name)));
}
using CanUnload = HRESULT(STDAPICALLTYPE*)();
using GetClass = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

TEST(LifetimeTest, TheLibraryCanGoWhenAllIsReleased) {
  const Apartment apartment;
  Value kept;
  {
    const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
    const Answer rows = reads.Call(L"ExecuteSQL", {L"Embedded=:memory:lifetime", L"select 1 a"});
    ASSERT_NE(rows.value.object(), nullptr);
    kept = TypedObject(rows.value.object()).Call(L"Fields", {0}).value;
  }
  const auto can_unload = Entry<CanUnload>("DllCanUnloadNow");
  ASSERT_NE(can_unload, nullptr);
  EXPECT_EQ(can_unload(), S_FALSE);
  EXPECT_EQ(TypedObject(kept.object()).Call(L"Value").value.number(), 1);
  kept = Value();
  EXPECT_EQ(can_unload(), S_OK);

  void* factory = nullptr;
  const auto get_class = Entry<GetClass>("DllGetClassObject");
  EXPECT_EQ(get_class(IID_IDispatch, IID_IClassFactory, &factory), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(factory, nullptr);
  CLSID class_id{};
  ASSERT_EQ(CLSIDFromProgID(L"Mirel.Vector", &class_id), S_OK);
  EXPECT_EQ(get_class(class_id, IID_IDispatch, &factory), E_NOINTERFACE);
  ASSERT_EQ(get_class(class_id, IID_IClassFactory, &factory), S_OK);
  EXPECT_EQ(can_unload(), S_FALSE);
  const auto own = com::Pointer<IClassFactory>::Adopt(static_cast<IClassFactory*>(factory));
  void* outer = nullptr;
  EXPECT_EQ(own->CreateInstance(own.get(), IID_IUnknown, &outer), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(own->CreateInstance(nullptr, IID_IEnumVARIANT, &outer), E_NOINTERFACE);
  EXPECT_EQ(own->LockServer(TRUE), S_OK);
  EXPECT_EQ(own->LockServer(FALSE), S_OK);
}

TEST(LifetimeTest, AThreadMayBeItsOnlyUserAndEnd) {
  std::thread([] {
    const Apartment apartment;
    const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
    EXPECT_EQ(reads.Call(L"ExecuteSQL", {L"Embedded=:memory:thread", L"select 1 a"}).status, S_OK);
  }).join();
}

TEST(LifetimeTest, EnumerationsGoBackAndFromWhereTheyAre) {
  const Apartment apartment;
  const TypedObject vector(L"Mirel.Vector");
  for (const int number : {10, 20, 30, 40}) vector.Call(L"Add", {number});
  const Answer made = Invoke(vector.get(), DISPID_NEWENUM, DISPATCH_METHOD | DISPATCH_PROPERTYGET, {});
  ASSERT_EQ(made.value.type(), VT_UNKNOWN);
  const auto items = com::Query<IEnumVARIANT>(Value(made.value).get().punkVal);
  ASSERT_TRUE(items);
  // Later changes do not reach it.
  vector.Call(L"Clear");
  const auto next = [](IEnumVARIANT* from, ULONG count) {
    std::vector<int> numbers;
    std::vector<VARIANT> read(count);
    ULONG fetched = 0;
    const HRESULT status = from->Next(count, read.data(), &fetched);
    EXPECT_EQ(status, fetched == count ? S_OK : S_FALSE);
    for (ULONG i = 0; i < fetched; ++i) numbers.push_back(static_cast<int>(read[i].lVal));
    return numbers;
  };
  EXPECT_EQ(next(items.get(), 1), std::vector<int>{10});
  EXPECT_EQ(items->Skip(1), S_OK);
  com::Pointer<IEnumVARIANT> copy;
  ASSERT_EQ(items->Clone(copy.Receive()), S_OK);
  EXPECT_EQ(next(items.get(), 5), (std::vector<int>{30, 40}));
  EXPECT_EQ(items->Skip(1), S_FALSE);
  EXPECT_EQ(next(copy.get(), 1), std::vector<int>{30});
  EXPECT_EQ(items->Reset(), S_OK);
  EXPECT_EQ(next(items.get(), 2), (std::vector<int>{10, 20}));
}

// The calls of others come to the apartment's thread, which serves them as it waits.
TEST(LifetimeTest, OtherApartmentsReachAnObjectThroughItsThread) {
  const Apartment apartment;
  const TypedObject dictionary(L"Mirel.Dictionary");
  const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
  dictionary.Put(L"Item", {L"a", 5});
  IStream* streams[2] = {};
  IDispatch* const objects[] = {dictionary.get(), reads.get()};
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IDispatch, objects[i], &streams[i]), S_OK);
  }
  const DISPID item = dictionary.Number(L"Item");
  const DISPID execute = reads.Number(L"ExecuteSQL");
  Answer value;
  Answer failure;
  const auto work = [&] {
    const Apartment own;
    com::Pointer<IDispatch> proxies[2];
    for (int i = 0; i < 2; ++i) {
      void* found = nullptr;
      ASSERT_EQ(CoGetInterfaceAndReleaseStream(streams[i], IID_IDispatch, &found), S_OK);
      proxies[i] = com::Pointer<IDispatch>::Adopt(static_cast<IDispatch*>(found));
    }
    value = Invoke(proxies[0].get(), item, DISPATCH_PROPERTYGET, {L"a"});
    failure = Invoke(proxies[1].get(), execute, DISPATCH_METHOD, {L"Embedded=:memory:apart", L"select nothing"});
  };
  HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::thread other([&] {
    work();
    SetEvent(done);
  });
  DWORD signalled = 0;
  EXPECT_EQ(CoWaitForMultipleHandles(0, 10000, 1, &done, &signalled), S_OK);
  other.join();
  CloseHandle(done);
  EXPECT_EQ(value.value.number(), 5);
  EXPECT_EQ(failure.error, static_cast<HRESULT>(0x80040E14));
  EXPECT_NE(failure.description.find(L"nothing"), std::wstring::npos);
}

/// Whether the service RpcSs runs or can be started, by which clients find objects in other processes. Wine's does not
/// always start.
bool ProcessesAreFound() {
  for (int tries = 0; tries < 3; ++tries) {
    _wsystem(L"net start RpcSs >nul 2>&1");
    if (_wsystem(L"net start | find \"Remote Procedure\" >nul 2>&1") == 0) return true;
  }
  return false;
}

TEST(LifetimeTest, TheSystemsSurrogateServesTheClasses) {
  if (!ProcessesAreFound()) GTEST_SKIP() << "The service RpcSs does not start";
  // Wine looks for it among the programs of 32 bits, whatever the library has.
  CopyFileW(L"C:\\windows\\system32\\dllhost.exe", L"C:\\windows\\syswow64\\dllhost.exe", FALSE);
  // Wine's does not end by itself.
  struct Ending {
    ~Ending() { EXPECT_EQ(_wsystem(L"taskkill /f /im dllhost.exe"), 0); }
  } const ending;
  const Apartment apartment;
  const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData", CLSCTX_LOCAL_SERVER);
  const auto execute = [&](const wchar_t* sql) {
    return Invoke(reads.get(), MemberId("ExecuteSQL"), DISPATCH_METHOD, {L"Embedded=:memory:surrogate", sql});
  };
  const Answer rows = execute(L"select 7 a");
  ASSERT_NE(rows.value.object(), nullptr);
  EXPECT_EQ(Invoke(rows.value.object(), kDefaultMember, DISPATCH_PROPERTYGET, {L"a"}).value.number(), 7);
  EXPECT_EQ(execute(L"select nothing").error, static_cast<HRESULT>(0x80040E14));
}

/// The database that TESSARLORN_TEST_DATABASE names, or a new file.
std::wstring EmptyDatabase() {
  if (const wchar_t* const given = _wgetenv(L"TESSARLORN_TEST_DATABASE")) return given;
  const wchar_t* const folder = _wgetenv(L"TESSARLORN_TEST_FOLDER");
  if (folder == nullptr) return L"";
  const std::wstring path = std::wstring(folder) + L"\\apartments.db";
  for (const wchar_t* const end : {L"", L"-wal", L"-shm"}) DeleteFileW((path + end).c_str());
  return L"Embedded=" + path + L";Synchronous=Normal";
}

TEST(LifetimeTest, TwoApartmentsWriteToOneDatabaseAtOnce) {
  constexpr int kRounds = 50;
  const std::wstring connection = EmptyDatabase();
  {
    const Apartment apartment;
    const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
    ASSERT_EQ(reads.Call(L"ExecuteSQL", {connection, L"create table T (FID int)"}).status, S_OK);
  }
  int done[2] = {};
  const auto work = [&](int& rounds) {
    const Apartment apartment;
    for (int i = 0; i < kRounds; ++i) {
      const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
      if (reads.Call(L"ExecuteSQL", {connection, L"insert into T values (1)"}).status == S_OK) ++rounds;
      if (reads.Call(L"ExecuteSQL", {connection, L"select nothing"}).error == static_cast<HRESULT>(0x80040E14))
        ++rounds;
    }
  };
  std::thread one(work, std::ref(done[0]));
  std::thread other(work, std::ref(done[1]));
  one.join();
  other.join();
  EXPECT_EQ(done[0], 2 * kRounds);
  EXPECT_EQ(done[1], 2 * kRounds);
  const Apartment apartment;
  const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
  const Answer rows = reads.Call(L"ExecuteSQL", {connection, L"select count(*) n from T"});
  const TypedObject field(TypedObject(rows.value.object()).Call(L"Fields", {0}).value.object());
  EXPECT_EQ(field.Call(L"Value").value.number(), 2 * kRounds);
}

}  // namespace
}  // namespace tessarlorn::com_test
