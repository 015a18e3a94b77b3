#include "hosts/com/hosting.h"

#include <mutex>

#include "com_base/windows_headers.h"
#include "hosts/com/foreign_object.h"
#include "hosts/com/module.h"
#include "platform/client_address.h"
#include "tessarlorn/ado_driver.h"
#include "tessarlorn/embedded_driver.h"
#include "tessarlorn/odbc_driver.h"
#include "tessarlorn/session.h"
#include "tessarlorn/siblings.h"

namespace tessarlorn::com {
namespace {

/// Takes two texts, 64 characters for the address and one that is not used; 1 when it knows the address.
using ReadTcpEntry = int(WINAPI*)(char* address, char* unused);

/// `ReadTcp` of the ERP's network library, or nullptr where that library is not.
ReadTcpEntry FindReadTcp() {
  // Not from the current folder, where a stranger's document may lie.
  const HMODULE library = LoadLibraryExW(L"venappsvr.dll", nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
  if (library == nullptr) return nullptr;
  const FARPROC entry = GetProcAddress(library, "ReadTcp");
  return reinterpret_cast<ReadTcpEntry>(reinterpret_cast<void*>(entry));
}

void RegisterNeighbours() {
  RegisterDefaultSiblings();
  for (const char* const prog_id :
       {"TessarMWebOrder.TessarMWebOrderUpdate", "TessarMWebOrder.TessarMWebOrderInfo", "QuorBase.SecurityInfo"}) {
    if (IsRegistered(prog_id)) RegisterObject(prog_id, [prog_id] { return CreateForeignObject(prog_id); });
  }
}

}  // namespace

void PrepareThisProcess() {
  static std::once_flag once;
  std::call_once(once, [] {
    KeepModule();
    RegisterAdoDriver();
    RegisterEmbeddedDriver();
    // Nobody cancels here, so that no thread need wait for it.
    RegisterOdbcDriver(OdbcCancelling::kNone);
    RegisterNeighbours();
    if (const ReadTcpEntry read = FindReadTcp()) {
      SetReadTcp([read](std::span<char> buffer, std::span<char> unused) {
        char nothing = '\0';
        return read(buffer.data(), unused.empty() ? &nothing : unused.data());
      });
    }
  });
}

void CloseIdleConnections() noexcept { SessionFactory::CloseIdle(); }

void EndWithProcess() noexcept {
  AbandonOdbc();
  SessionFactory::CloseIdle();
}

}  // namespace tessarlorn::com
