#include "hosts/com/hosting.h"

#include <atomic>
#include <memory>

#include "com_base/windows_headers.h"
#include "hosts/com/container.h"
#include "hosts/com/foreign_object.h"
#include "hosts/com/module.h"
#include "tessarlorn/ado_driver.h"
#include "tessarlorn/embedded_driver.h"
#include "tessarlorn/odbc_driver.h"
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

void AddNeighbours(Host& host) {
  AddDefaultSiblings(host);
  for (const char* const prog_id :
       {"TessarMWebOrder.TessarMWebOrderUpdate", "TessarMWebOrder.TessarMWebOrderInfo", "QuorBase.SecurityInfo"}) {
    if (IsRegistered(prog_id)) host.AddObject(prog_id, [prog_id] { return CreateForeignObject(prog_id); });
  }
}

/// The one that TheHost() made, nullptr before. Never destroyed: the process may be ending where its libraries are
/// gone.
std::atomic<Host*> made = nullptr;

Host* MakeHost() {
  KeepModule();
  auto host = std::make_unique<Host>();
  AddAdoDriver(*host);
  AddEmbeddedDriver(*host);
  // Nobody cancels here, so that no thread need wait for it.
  AddOdbcDriver(*host, OdbcCancelling::kNone);
  host->SetTransaction(TransactionOfContainer);
  AddNeighbours(*host);
  if (const ReadTcpEntry read = FindReadTcp()) {
    host->SetReadTcp([read](std::span<char> buffer, std::span<char> unused) {
      char nothing = '\0';
      return read(buffer.data(), unused.empty() ? &nothing : unused.data());
    });
  }
  made = host.get();
  return host.release();
}

}  // namespace

Host& TheHost() {
  static Host& host = *MakeHost();
  return host;
}

void CloseIdleConnections() noexcept {
  if (Host* const host = made) host->CloseIdle();
}

void EndWithProcess() noexcept {
  AbandonOdbc();
  CloseIdleConnections();
}

}  // namespace tessarlorn::com
