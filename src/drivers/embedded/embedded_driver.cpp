#include "drivers/embedded/embedded_driver.h"

#include <charconv>
#include <chrono>
#include <filesystem>
#include <system_error>

#include "drivers/embedded/session.h"
#include "platform/file_path.h"
#include "platform/session_string.h"
#include "platform/text.h"

namespace tessarlorn {
namespace {

using embedded::DatabaseHandle;
using embedded::Session;
using embedded::SqlError;

struct Options {
  std::string file;
  int timeout_seconds = 30;
  bool full = true;
};

[[noreturn]] void RaiseLogin(const std::string& description) {
  throw Error(error_number::kLoginRefused, "TessarLorn embedded database", description, {4060, "08001"});
}

Options ParseOptions(std::string_view text) {
  Options options;
  for (const auto& [key, value] : ParsePairs(text)) {
    if (EqualsIgnoreCase(key, "Embedded")) {
      options.file = value;
    } else if (EqualsIgnoreCase(key, "Timeout")) {
      const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), options.timeout_seconds);
      if (error != std::errc{} || end != value.data() + value.size() || options.timeout_seconds < 0 ||
          options.timeout_seconds > 3600) {
        RaiseLogin("Timeout in the connection string is '" + value +
                   "'; a number of seconds from 0 to 3600 is wanted.");
      }
    } else if (EqualsIgnoreCase(key, "Synchronous")) {
      options.full = EqualsIgnoreCase(value, "Full");
      if (!options.full && !EqualsIgnoreCase(value, "Normal")) {
        RaiseLogin("Synchronous in the connection string is '" + value + "'; Full or Normal is wanted.");
      }
    } else {
      RaiseLogin("The connection string has an unknown key '" + key +
                 "'; known are Embedded, Timeout and Synchronous.");
    }
  }
  if (options.file.empty()) RaiseLogin("Embedded= in the connection string names no file.");
  return options;
}

DatabaseHandle OpenDatabase(const Options& options) {
  constexpr std::string_view kMemory = ":memory:";
  const bool memory = options.file.starts_with(kMemory);
  std::string name = options.file;
  int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  if (memory) {
    name = "file:/tessarlorn-" + options.file.substr(kMemory.size()) + "?vfs=memdb";
    flags |= SQLITE_OPEN_URI;
  } else {
    std::error_code ignored;
    const std::filesystem::path file = ToPath(name);
    const std::filesystem::path folder = file.parent_path();
    if (!folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
      RaiseLogin("Cannot open the database '" + name + "': the folder '" + PathText(folder) + "' does not exist.");
    }
    if (std::filesystem::is_directory(file, ignored))
      RaiseLogin("Cannot open the database '" + name + "': it is a folder.");
  }
  sqlite3* opened = nullptr;
  const int status = sqlite3_open_v2(name.c_str(), &opened, flags, nullptr);
  DatabaseHandle database(opened);
  if (status != SQLITE_OK) {
    RaiseLogin("Cannot open the database '" + options.file + "': " + sqlite3_errmsg(opened) + ".");
  }
  sqlite3_extended_result_codes(opened, 1);
  sqlite3_busy_timeout(opened, options.timeout_seconds * 1000);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  sqlite3_limit(opened, SQLITE_LIMIT_VARIABLE_NUMBER, 250000);
  embedded::RunSql(opened, "PRAGMA temp_store = MEMORY; PRAGMA foreign_keys = ON; PRAGMA cache_size = -65536");
  // A read that fails here says that the file is no database, before anything is done with it.
  embedded::RunSql(opened, "SELECT count(*) FROM sqlite_schema");
  if (!memory) {
    if (sqlite3_db_readonly(opened, "main") == 1) {
      RaiseLogin("Cannot open the database '" + options.file + "': the file or its folder may not be written.");
    }
    embedded::RunSql(opened, "PRAGMA journal_mode = WAL");
    embedded::RunSql(opened, options.full ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
  }
  embedded::Catalog::Make(opened);
  return database;
}

/// SqlError, the engine's own, becomes the platform's Error at this door.
template <typename Body>
auto Translated(Body body) {
  try {
    return body();
  } catch (const SqlError& error) {
    throw embedded::ToError(error);
  } catch (const Error&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw embedded::ToError(embedded::OutOfMemory());
  } catch (const std::exception&) {
    throw embedded::ToError(embedded::InnerError());
  }
}

class EmbeddedConnection final : public Connection {
 public:
  EmbeddedConnection(DatabaseHandle database, std::chrono::seconds lock_timeout)
      : session_(std::move(database), lock_timeout) {}

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
  [[nodiscard]] bool usable() const noexcept override { return true; }
  void Cancel() noexcept override { session_.Cancel(); }

 protected:
  void Run(std::string_view text, bool first_only, BatchSink& sink) override {
    Translated([&] { session_.Run(text, first_only, sink); });
  }

 private:
  Session session_;
};

class EmbeddedDriver final : public Driver {
 public:
  [[nodiscard]] std::vector<std::string> Prefixes() const override { return {"Embedded"}; }
  [[nodiscard]] std::unique_ptr<Connection> Open(std::string_view database_string) override {
    return Translated([&]() -> std::unique_ptr<Connection> {
      const Options options = ParseOptions(database_string);
      return std::make_unique<EmbeddedConnection>(OpenDatabase(options), std::chrono::seconds(options.timeout_seconds));
    });
  }
};

}  // namespace

void RegisterEmbeddedDriver() { RegisterDriver(std::make_shared<EmbeddedDriver>()); }

}  // namespace tessarlorn
