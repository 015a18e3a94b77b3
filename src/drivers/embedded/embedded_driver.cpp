#include "tessarlorn/embedded_driver.h"

#include <chrono>

#include "platform/driver.h"
#include "tsql/engine/session.h"
#include "tsql/storage/database_file.h"

namespace tessarlorn {
namespace {

using tsql::OpenedDatabase;
using tsql::Session;
using tsql::SqlError;

/// SqlError, the engine's own, becomes the platform's Error at this door.
template <typename Body>
auto Translated(Body body) {
  try {
    return body();
  } catch (const SqlError& error) {
    throw tsql::ToError(error);
  } catch (const Error&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw tsql::ToError(tsql::OutOfMemory());
  } catch (const std::exception&) {
    throw tsql::ToError(tsql::InnerError());
  }
}

class EmbeddedConnection final : public Connection {
 public:
  EmbeddedConnection(OpenedDatabase database, const tsql::DatabaseOptions& options, const Host& host)
      : session_(
            std::move(database.handle), options.timeout, [&host] { return host.LocalNow(); }, options.memory),
        reads_only_(database.reads_only) {}

  void BeginTransaction() override {
    Translated([&] { session_.BeginContainerTransaction(); });
  }
  void CommitTransaction() override {
    Translated([&] { session_.CommitContainerTransaction(); });
  }
  void RollbackTransaction() override {
    Translated([&] { session_.RollbackContainerTransaction(); });
  }
  bool Reset() noexcept override {
    try {
      session_.Reset();
      return true;
    } catch (const std::exception&) {
      return false;
    }
  }
  /// One that only reads is not kept: the next one may find room on the disk.
  [[nodiscard]] bool usable() const noexcept override { return !reads_only_; }
  void Cancel() noexcept override { session_.Cancel(); }

 protected:
  void Run(SqlCommand& command, bool first_only, BatchSink& sink) override {
    Translated([&] { session_.Run(command, first_only, sink); });
  }

 private:
  Session session_;
  bool reads_only_;
};

class EmbeddedDriver final : public Driver {
 public:
  explicit EmbeddedDriver(const Host& host) : host_(host) {}

  [[nodiscard]] std::vector<std::string> Keys() const override { return {"Embedded"}; }
  [[nodiscard]] std::unique_ptr<Connection> Open(std::string_view database_string) override {
    return Translated([&]() -> std::unique_ptr<Connection> {
      const tsql::DatabaseOptions options = tsql::ParseDatabaseOptions(database_string);
      return std::make_unique<EmbeddedConnection>(tsql::OpenDatabase(options), options, host_);
    });
  }

 private:
  const Host& host_;
};

}  // namespace

void AddEmbeddedDriver(Host& host) { host.AddDriver(std::make_shared<EmbeddedDriver>(host)); }

}  // namespace tessarlorn
