#include <gtest/gtest.h>

#include "com/client/typed_object.h"

// Only this one declares them.
#include <aclapi.h>

namespace tessarlorn::com_test {
namespace {

constexpr const wchar_t* kKey = L"Software\\Classes\\Mirel.Vector.1";

/// Leaves everybody no more than these rights to a key of the machine's part while it lives.
class ClosedKey {
 public:
  explicit ClosedKey(DWORD rights) {
    RegCreateKeyExW(HKEY_LOCAL_MACHINE, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr);
    SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
    AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &everybody_);
    Allow(rights);
  }
  ClosedKey(const ClosedKey&) = delete;
  ClosedKey& operator=(const ClosedKey&) = delete;
  ~ClosedKey() {
    Allow(KEY_ALL_ACCESS);
    RegCloseKey(key_);
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, kKey);
    FreeSid(everybody_);
  }

 private:
  void Allow(DWORD rights) {
    alignas(ACL) BYTE space[256] = {};
    ACL* const list = reinterpret_cast<ACL*>(space);
    SECURITY_DESCRIPTOR descriptor{};
    InitializeAcl(list, sizeof(space), ACL_REVISION);
    AddAccessAllowedAce(list, ACL_REVISION, rights, everybody_);
    InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
    SetSecurityDescriptorDacl(&descriptor, TRUE, list, FALSE);
    RegSetKeySecurity(key_, DACL_SECURITY_INFORMATION, &descriptor);
  }

  HKEY key_ = nullptr;
  PSID everybody_ = nullptr;
};

bool Exists(HKEY root, const std::wstring& key) {
  HKEY opened = nullptr;
  const bool found = RegOpenKeyExW(root, (L"Software\\Classes\\" + key).c_str(), 0, KEY_READ, &opened) == ERROR_SUCCESS;
  if (found) RegCloseKey(opened);
  return found;
}

/// The library's own entry points, by which it is registered.
class RegistrationTest : public testing::Test {
 protected:
  RegistrationTest() {
    const std::wstring path = [] {
      const TypedObject any(L"Mirel.Vector");
      std::wstring text(MAX_PATH, L'\0');
      text.resize(GetModuleFileNameW(GetModuleHandleW(L"TessarLornPickingAndDelivery.dll"), text.data(), MAX_PATH));
      return text;
    }();
    const HMODULE library = LoadLibraryW(path.c_str());
    const auto entry = [library](const char* name) {
      return reinterpret_cast<Entry>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    };
    enlist_ = entry("DllRegisterServer");
    withdraw_ = entry("DllUnregisterServer");
  }
  ~RegistrationTest() override { EXPECT_EQ(enlist_(), S_OK); }

  using Entry = HRESULT(STDAPICALLTYPE*)();
  Entry enlist_ = nullptr;
  Entry withdraw_ = nullptr;

 private:
  Apartment apartment_;
};

TEST_F(RegistrationTest, IsForTheUserWhereTheMachinesPartIsClosed) {
  ASSERT_EQ(withdraw_(), S_OK);
  const ClosedKey closed(KEY_READ);
  EXPECT_EQ(enlist_(), S_OK);
  for (const wchar_t* const name : {L"TessarLornPickingAndDelivery.clsGetData", L"Mirel.Vector"}) {
    EXPECT_TRUE(Exists(HKEY_CURRENT_USER, std::wstring(name) + L"\\CLSID")) << name;
    EXPECT_FALSE(Exists(HKEY_LOCAL_MACHINE, std::wstring(name) + L"\\CLSID")) << name;
  }
  // Wine registers type libraries for the machine whatever it is asked for, and looks for classes only there.
  EXPECT_EQ(withdraw_(), S_OK);
  EXPECT_FALSE(Exists(HKEY_CURRENT_USER, L"Mirel.Vector"));
}

TEST_F(RegistrationTest, TellsWhatItCouldNotRemove) {
  // Wine removes whatever it can open.
  const ClosedKey closed(READ_CONTROL);
  EXPECT_EQ(withdraw_(), HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
  EXPECT_TRUE(Exists(HKEY_LOCAL_MACHINE, L"Mirel.Vector.1\\CLSID"));
  EXPECT_FALSE(Exists(HKEY_LOCAL_MACHINE, L"Mirel.Vector"));
}

}  // namespace
}  // namespace tessarlorn::com_test
