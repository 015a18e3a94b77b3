// What a host holds.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "platform/driver.h"
#include "platform/idle_connections.h"
#include "tessarlorn/host.h"

namespace tessarlorn {

struct Host::Parts {
  /// Of drivers and creators.
  std::mutex mutex;
  /// By key in lower case.
  std::map<std::string, std::shared_ptr<Driver>> drivers;
  /// By name in lower case.
  std::map<std::string, ObjectCreator> creators;
  std::function<DateTime()> clock;
  ReadTcpFunction read_tcp;
  std::function<std::shared_ptr<void>()> transaction;
  BatchObservers observers;
  IdleConnections idle;
};

}  // namespace tessarlorn
