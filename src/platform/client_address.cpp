#include "platform/client_address.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <utility>

#include "tessarlorn/session.h"

namespace tessarlorn {
namespace {

struct Registered {
  std::mutex mutex;
  ReadTcpFunction function;
};

Registered& TheRegistered() {
  static Registered registered;
  return registered;
}

int ReadFromCurrentSession(std::span<char> buffer) {
  const DataSession* session = SessionFactory::ForThisThread().current();
  if (session == nullptr || session->GetContext().client().empty() || buffer.empty()) return 0;
  const std::string& client = session->GetContext().client();
  const std::size_t length = std::min(client.size(), buffer.size() - 1);
  std::copy_n(client.begin(), length, buffer.begin());
  buffer[length] = '\0';
  return 1;
}

}  // namespace

void SetReadTcp(ReadTcpFunction function) {
  const std::scoped_lock lock(TheRegistered().mutex);
  TheRegistered().function = std::move(function);
}

int ReadTcp(std::span<char> buffer, std::span<char> unused) {
  ReadTcpFunction function;
  {
    const std::scoped_lock lock(TheRegistered().mutex);
    function = TheRegistered().function;
  }
  return function ? function(buffer, unused) : ReadFromCurrentSession(buffer);
}

}  // namespace tessarlorn
