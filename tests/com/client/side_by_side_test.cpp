#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>

#include "com/client/active_manifest.h"
#include "com/client/typed_object.h"
#include "com/client/vtable.h"

namespace tessarlorn::com_test {
namespace {

constexpr const char* kArchitecture = sizeof(void*) == 8 ? "amd64" : "x86";
constexpr const wchar_t* kProxyOfLibraries = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* kReads = L"{F8090680-DED3-472A-B6BD-5DEBC50A61AE}";
constexpr const wchar_t* kLibrary = L"{1FE32CD4-2232-4B66-8CEF-F811FBCB2D64}";

struct Class {
  const wchar_t* prog_id;
  const wchar_t* class_id;
};
constexpr Class kClasses[] = {
    {L"TessarLornPickingAndDelivery.clsSaveData", L"{0FCEDCEA-3E55-4379-AD0E-E995153A457A}"},
    {L"TessarLornPickingAndDelivery.clsGetData", L"{914BB553-55C6-4512-A89A-BACA8B46710B}"},
    {L"Mirel.Dictionary", L"{EA42DD31-F11F-497C-BA9E-E9406C345382}"},
    {L"Mirel.Vector", L"{8E81B607-5334-4BA0-90B0-03B0209FBA25}"},
};

GUID ToGuid(const wchar_t* text) {
  GUID id{};
  EXPECT_EQ(CLSIDFromString(text, &id), S_OK);
  return id;
}

/// An object of the class, or nothing.
com::Pointer<IDispatch> Make(const CLSID& class_id) {
  void* created = nullptr;
  const HRESULT status = CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &created);
  return com::Pointer<IDispatch>::Adopt(SUCCEEDED(status) ? static_cast<IDispatch*>(created) : nullptr);
}

/// The class that the type library tells an object to be of.
GUID ClassOf(IDispatch* object) {
  com::Pointer<ITypeInfo> info;
  const auto provider = com::Query<IProvideClassInfo>(object);
  if (!provider || FAILED(provider->GetClassInfo(info.Receive()))) return {};
  TYPEATTR* attributes = nullptr;
  if (FAILED(info->GetTypeAttr(&attributes))) return {};
  const GUID id = attributes->guid;
  info->ReleaseTypeAttr(attributes);
  return id;
}

/// A program's manifest, which depends on the library's.
std::wstring WriteProgramManifest() {
  const std::wstring path = LibraryFolder() + L"\\program.manifest";
  std::ofstream(std::filesystem::path(path))
      << R"(<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0"><dependency><dependentAssembly>
<assemblyIdentity type="win32" name="TessarLornPickingAndDelivery.Assembly" version="0.1.0.0" processorArchitecture=")"
      << kArchitecture << R"("/></dependentAssembly></dependency></assembly>)";
  return path;
}

/// The manifest that the thread uses. Nothing is registered.
class SideBySideTest : public testing::TestWithParam<std::wstring (*)()> {
 protected:
  const std::wstring path_ = GetParam()();
};

TEST_P(SideBySideTest, ClassesAreKnownByTheManifestAlone) {
  const Apartment apartment;
  for (const Class& own : kClasses) {
    const GUID id = ToGuid(own.class_id);
    const std::wstring names[] = {own.prog_id, own.prog_id + std::wstring(L".1")};
    EXPECT_FALSE(Make(id)) << own.prog_id;
    for (const std::wstring& name : names) EXPECT_THROW(TypedObject{name.c_str()}, std::runtime_error) << name;
    const ActiveManifest manifest(path_);
    EXPECT_TRUE(IsEqualGUID(ClassOf(Make(id).get()), id)) << own.prog_id;
    for (const std::wstring& name : names) {
      EXPECT_TRUE(IsEqualGUID(ClassOf(TypedObject(name.c_str()).get()), id)) << name;
    }
  }
  const ActiveManifest manifest(path_);
  const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
  const TypedObject rows(reads.Call(L"ExecuteSQL", {L"Embedded=:memory:manifest", L"select 42 a"}).value.object());
  EXPECT_EQ(TypedObject(rows.Call(L"Fields", {L"a"}).value.object()).Call(L"Value").value.number(), 42);
}

// Those who do not ask an object for it find it by its number.
TEST_P(SideBySideTest, TheTypeLibraryIsKnownByTheManifestAlone) {
  const Apartment apartment;
  com::Pointer<ITypeLib> library;
  EXPECT_NE(LoadRegTypeLib(ToGuid(kLibrary), 1, 0, LOCALE_NEUTRAL, library.Receive()), S_OK);
  const ActiveManifest manifest(path_);
  ASSERT_EQ(LoadRegTypeLib(ToGuid(kLibrary), 1, 0, LOCALE_NEUTRAL, library.Receive()), S_OK);
  com::Pointer<ITypeInfo> info;
  for (const Class& own : kClasses) EXPECT_EQ(library->GetTypeInfoOfGuid(ToGuid(own.class_id), info.Receive()), S_OK);
  // What calls from one apartment to another need for early binding.
  CLSID proxy{};
  EXPECT_EQ(CoGetPSClsid(ToGuid(kReads), &proxy), S_OK);
  EXPECT_TRUE(IsEqualGUID(proxy, ToGuid(kProxyOfLibraries)));
}

/// Wine registers a library that it has loaded by a program's manifest.
void Unregister() {
  for (const wchar_t* const key :
       {L"Interface\\{F8090680-DED3-472A-B6BD-5DEBC50A61AE}", L"TypeLib\\{1FE32CD4-2232-4B66-8CEF-F811FBCB2D64}"}) {
    RegDeleteTreeW(HKEY_CLASSES_ROOT, key);
  }
}

// The objects live in a single-threaded apartment. All threads of a program know its own manifest.
TEST(ProgramManifestTest, CompiledClientsCallFromTheMultithreadedApartment) {
  Unregister();
  const Apartment apartment(COINIT_MULTITHREADED);
  const TypedObject reads(L"TessarLornPickingAndDelivery.clsGetData");
  EXPECT_TRUE(com::Query<IMultiQI>(reads.get())) << "What stands for it here is no proxy";
  const Answer answer = Vtable(reads).Call(L"ExecuteSQL", {L"Embedded=:memory:apartment", L"select 42 a"});
  ASSERT_NE(answer.value.object(), nullptr);
  EXPECT_EQ(Vtable(TypedObject(answer.value.object())).Get(L"RecordCount").value.number(), 1);
  Unregister();
}

INSTANTIATE_TEST_SUITE_P(Manifests, SideBySideTest, testing::Values(&LibraryManifest, &WriteProgramManifest));

}  // namespace
}  // namespace tessarlorn::com_test
