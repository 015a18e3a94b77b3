#include "tsql/storage/database_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>
#include <thread>
#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

#include "platform/driver_options.h"
#include "platform/file_path.h"
#include "platform/server_messages.h"
#include "platform/session_string.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"
#include "tsql/storage/catalog.h"

namespace tessarlorn::tsql {
namespace {

/// In the file's header, where the tool `file` and others look for it: "TLpd".
constexpr std::int64_t kApplicationId = 0x544C7064;

enum class Owner : std::uint8_t { kNobody, kUs, kUsUnmarked, kAnother };

constexpr const char* kSource = "TessarLorn embedded database";

[[noreturn]] void RaiseCannotOpen(const std::string& file, const std::string& why) {
  RaiseLogin(kSource, "Cannot open the database '" + file + "': " + why, server_message::kCannotOpenDatabase);
}

[[noreturn]] void RaiseOption(const std::string& why) { RaiseLogin(kSource, why, server_message::kCannotOpenDatabase); }

TextOrder ReadTextOrder(const std::string& collation) {
  const std::optional<TextOrder> order = FindTextOrder(collation);
  if (!order) {
    RaiseOption("Collation in the connection string is '" + collation +
                "'; Chinese_PRC_CI_AS, Chinese_PRC_Stroke_CI_AS or Chinese_Taiwan_Stroke_CI_AS is wanted.");
  }
  if (!CanSort(*order)) RaiseOption("Collation in the connection string needs ICU, which this build is without.");
  return *order;
}

constexpr NumberOption kTimeout{"Timeout", 0, 3600, "seconds"};
constexpr NumberOption kMaxMemory{"MaxMemory", 16, 65536, "megabytes"};
constexpr NumberOption kCache{"Cache", 1, 65536, "megabytes"};

constexpr const char* kMayNotBeWritten = "the file, its folder or a file beside it (-wal, -shm) may not be written.";
constexpr const char* kAnothers =
    "it is a file of another program. It was left as it is; a database of ours wants a file of its own.";

constexpr const char* kEmpty = "it is empty, and no database of ours.";

std::int64_t ReadNumber(sqlite3* database, const char* sql) {
  SqliteStatement statement(database, sql);
  statement.Step();
  return statement.Integer(0);
}

Owner OwnerOf(sqlite3* database) {
  const std::int64_t id = ReadNumber(database, "PRAGMA main.application_id");
  if (id == kApplicationId) return Owner::kUs;
  if (id != 0) return Owner::kAnother;
  if (ReadNumber(database, "SELECT count(*) FROM sqlite_schema WHERE name IN ('$objects', '$columns')") == 2) {
    return Owner::kUsUnmarked;
  }
  return ReadNumber(database, "SELECT count(*) FROM sqlite_schema") == 0 ? Owner::kNobody : Owner::kAnother;
}

/// The file's name in a URI of SQLite's.
std::string UriOf(const std::string& file, std::string_view query) {
  std::string path = file;
#ifdef _WIN32
  std::replace(path.begin(), path.end(), '\\', '/');
  // A drive's letter follows a slash.
  if (path.size() > 1 && path[1] == ':') path.insert(0, "/");
#endif
  // Two slashes would be followed by the name of a machine.
  if (path.starts_with("//")) path.insert(0, "//");
  path = ReplaceAll(ReplaceAll(ReplaceAll(path, "%", "%25"), "?", "%3f"), "#", "%23");
  return "file:" + path + "?" + std::string(query);
}

/// Settings of the process, taken before SQLite is used for the first time, and refused later.
void ConfigureSqlite() {
  // Nobody asks how much memory is in use, and the count makes threads wait for each other.
  constexpr int kCountMemory = 0;
  [[maybe_unused]] static const int status = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, kCountMemory);
}

/// @param name a file or a URI
DatabaseHandle Connect(const std::string& name, int flags, const std::string& shown, std::chrono::milliseconds wait) {
  ConfigureSqlite();
  sqlite3* opened = nullptr;
  const int status = sqlite3_open_v2(name.c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  DatabaseHandle database(opened);
  if (status != SQLITE_OK) {
    if (opened != nullptr && (status & 0xff) == SQLITE_CANTOPEN) {
      RaiseCannotOpen(shown, sqlite3_system_errno(opened) == 0 ? "it may not be read." : kMayNotBeWritten);
    }
    RaiseCannotOpen(shown, std::string(opened == nullptr ? "out of memory" : sqlite3_errmsg(opened)) + ".");
  }
  sqlite3_extended_result_codes(opened, 1);
  sqlite3_busy_timeout(opened, static_cast<int>(wait.count()));
  sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
  sqlite3_limit(opened, SQLITE_LIMIT_VARIABLE_NUMBER, 250000);
  // Temporary tables and sorts go to a file when they outgrow their cache.
  RunSql(opened,
         "PRAGMA temp_store = FILE; PRAGMA foreign_keys = ON; PRAGMA cache_size = -65536; "
         "PRAGMA temp.cache_size = -32768");
  return database;
}

void LimitCache(sqlite3* database, int megabytes) {
  const int pages = -1024 * megabytes;  // SQLite takes kilobytes as a negative number
  RunSql(database,
         "PRAGMA cache_size = " + std::to_string(pages) + "; PRAGMA temp.cache_size = " + std::to_string(pages / 2));
}

/// Looks at the file as it lies there, without locks and without files beside it, so that nothing of another program's
/// changes. What is not told from that is told after opening.
void RefuseAnothers(const std::string& file) {
  ConfigureSqlite();
  sqlite3* opened = nullptr;
  const int status = sqlite3_open_v2(UriOf(file, "mode=ro&immutable=1").c_str(), &opened,
                                     SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX, nullptr);
  const DatabaseHandle database(opened);
  if (status != SQLITE_OK) return;
  std::optional<Owner> owner;
  try {
    owner = OwnerOf(opened);
  } catch (const SqlError&) {
    // It is damaged, no database, or being written.
  }
  if (owner == Owner::kAnother) RaiseCannotOpen(file, kAnothers);
}

/// SQLite does not wait when others use a file whose journal is to change.
void UseWriteAheadLog(sqlite3* database, std::chrono::milliseconds wait) {
  constexpr std::chrono::milliseconds kPause{10};
  const auto until = std::chrono::steady_clock::now() + wait;
  for (;;) {
    try {
      RunSql(database, "PRAGMA journal_mode = WAL");
      return;
    } catch (const SqlError& error) {
      if (error.number() != 1222 || std::chrono::steady_clock::now() >= until) throw;
    }
    std::this_thread::sleep_for(kPause);
  }
}

/// SQLite reads with what it may not write, and says so only when something is to be written.
bool MayNotBeWritten(const std::string& file) {
#ifdef _WIN32
  static_cast<void>(file);
  return false;
#else
  return faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) != 0 && (errno == EACCES || errno == EROFS);
#endif
}

/// Raises 4060 where texts sort otherwise than the connection string asks for, or as this build cannot.
void RequireTextOrder(sqlite3* database, const DatabaseOptions& options) {
  const TextOrder order = TextOrderOf(database);
  const std::string name(TextOrderName(order));
  if (options.text_order && *options.text_order != order) {
    RaiseCannotOpen(options.file, "its texts are sorted by " + name + ", and Collation in the connection string is " +
                                      std::string(TextOrderName(*options.text_order)) + ".");
  }
  if (!CanSort(order))
    RaiseCannotOpen(options.file, "its texts are sorted by " + name + ", for which this build has no ICU.");
}

void MakeCatalog(sqlite3* database, const DatabaseOptions& options) {
  RunSql(database, "BEGIN IMMEDIATE");
  try {
    if (options.text_order && OwnerOf(database) == Owner::kNobody) {
      RunSql(database, "PRAGMA main.user_version = " + std::to_string(static_cast<int>(*options.text_order)));
    }
    Catalog::Make(database);
    MarkAsOurs(database);
    RunSql(database, "COMMIT");
  } catch (const SqlError&) {
    sqlite3_exec(database, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

OpenedDatabase OpenFile(const DatabaseOptions& options, MissingFile missing) {
  constexpr int kFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  const std::chrono::milliseconds wait = std::max(options.timeout, kLongestReadWait);
  OpenedDatabase opened;
  Owner owner = Owner::kNobody;
  try {
    opened.handle = Connect(options.file, kFlags, options.file, wait);
    owner = OwnerOf(opened.handle.get());
  } catch (const SqlError& error) {
    // The disk is full. What is there can be read without a file for locks of one's own.
    if (error.number() != 1105) throw;
    // SQLite opens that file once in a process.
    opened.handle.reset();
    opened.handle = Connect(UriOf(options.file, "readonly_shm=1"), kFlags | SQLITE_OPEN_URI, options.file, wait);
    opened.reads_only = true;
    owner = OwnerOf(opened.handle.get());
  }
  sqlite3* const database = opened.handle.get();
  if (owner == Owner::kAnother) {
    sqlite3_db_config(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    RaiseCannotOpen(options.file, kAnothers);
  }
  if (sqlite3_db_readonly(database, "main") == 1 || MayNotBeWritten(options.file + "-wal") ||
      MayNotBeWritten(options.file + "-shm")) {
    RaiseCannotOpen(options.file, kMayNotBeWritten);
  }
  if (owner == Owner::kNobody && missing == MissingFile::kRefuse) RaiseCannotOpen(options.file, kEmpty);
  if (!opened.reads_only) UseWriteAheadLog(database, wait);
  RunSql(database, options.full ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
  if (owner == Owner::kNobody) MakeCatalog(database, options);
  RequireTextOrder(database, options);
  return opened;
}

}  // namespace

DatabaseOptions ParseDatabaseOptions(std::string_view text) {
  const auto pairs = ReadPairs(text);
  if (const auto* fault = std::get_if<PairsFault>(&pairs)) RaiseOption("Connection string: " + fault->description);
  const auto read = [](const NumberOption& option, const std::string& value) {
    return option.Read(value, kSource, server_message::kCannotOpenDatabase);
  };
  DatabaseOptions options;
  for (const auto& [key, value] : std::get<Pairs>(pairs)) {
    if (EqualsIgnoreCase(key, "Embedded")) {
      options.file = value;
    } else if (EqualsIgnoreCase(key, kTimeout.key)) {
      options.timeout = std::chrono::seconds(read(kTimeout, value));
    } else if (EqualsIgnoreCase(key, kMaxMemory.key)) {
      options.memory = static_cast<std::size_t>(read(kMaxMemory, value)) << 20;
    } else if (EqualsIgnoreCase(key, kCache.key)) {
      options.cache = read(kCache, value);
    } else if (EqualsIgnoreCase(key, "Collation")) {
      options.text_order = ReadTextOrder(value);
    } else if (EqualsIgnoreCase(key, "Synchronous")) {
      options.full = EqualsIgnoreCase(value, "Full");
      if (!options.full && !EqualsIgnoreCase(value, "Normal")) {
        RaiseOption("Synchronous in the connection string is '" + value + "'; Full or Normal is wanted.");
      }
    } else {
      RaiseOption("The connection string has an unknown key '" + key +
                  "'; known are Embedded, Timeout, Synchronous, MaxMemory, Cache and Collation.");
    }
  }
  if (options.file.empty()) RaiseOption("Embedded= in the connection string names no file.");
  return options;
}

OpenedDatabase OpenDatabase(const DatabaseOptions& options, MissingFile missing) {
  if (options.in_memory()) {
    const std::string name =
        "file:/tessarlorn-" + options.file.substr(std::string_view(":memory:").size()) + "?vfs=memdb";
    OpenedDatabase opened{
        Connect(name, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI, options.file, options.timeout)};
    MakeCatalog(opened.handle.get(), options);
    RequireTextOrder(opened.handle.get(), options);
    // Its temporary tables lie in memory, too.
    constexpr std::size_t kPage = 4096;
    RunSql(opened.handle.get(), "PRAGMA temp.max_page_count = " + std::to_string(options.memory / kPage));
    return opened;
  }
  std::error_code ignored;
  const std::filesystem::path path = ToPath(options.file);
  const std::filesystem::path folder = path.parent_path();
  if (!folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
    RaiseCannotOpen(options.file, "the folder '" + PathText(folder) + "' does not exist.");
  }
  if (std::filesystem::is_directory(path, ignored)) RaiseCannotOpen(options.file, "it is a folder.");
  const bool there = std::filesystem::exists(path, ignored);
  if (!there && missing == MissingFile::kRefuse) RaiseCannotOpen(options.file, "there is no such file.");
  if (there) RefuseAnothers(options.file);
  try {
    OpenedDatabase opened = OpenFile(options, missing);
    LimitCache(opened.handle.get(), options.cache);
    return opened;
  } catch (const SqlError& error) {
    // Which of the rights is missing shows up in different places.
    if (error.number() == 3906 || error.number() == server_message::kCannotOpenDatabase)
      RaiseCannotOpen(options.file, kMayNotBeWritten);
    throw;
  }
}

DatabaseHandle OpenForReading(const std::string& file) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(ToPath(file), ignored)) RaiseCannotOpen(file, "there is no such file.");
  DatabaseHandle database =
      Connect(UriOf(file, "mode=ro&immutable=1"), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, file, kLongestReadWait);
  const Owner owner = OwnerOf(database.get());
  if (owner != Owner::kUs && owner != Owner::kUsUnmarked) {
    RaiseCannotOpen(file, owner == Owner::kAnother ? kAnothers : kEmpty);
  }
  return database;
}

TextOrder TextOrderOf(sqlite3* database) {
  const std::int64_t number = ReadNumber(database, "PRAGMA main.user_version");
  constexpr auto kLast = static_cast<std::int64_t>(TextOrder::kTaiwanStroke);
  if (number < 0 || number > kLast) RaiseOption("The database's texts sort in a way that only a later version knows.");
  return static_cast<TextOrder>(number);
}

DatabaseHandle OpenCopy(const std::string& file) {
  DatabaseHandle database =
      Connect(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXCLUSIVE, file, kLongestReadWait);
  // A copy that fails is thrown away.
  RunSql(database.get(), "PRAGMA journal_mode = OFF; PRAGMA synchronous = FULL");
  return database;
}

void MarkAsOurs(sqlite3* database) {
  if (ReadNumber(database, "PRAGMA main.application_id") == kApplicationId) return;
  RunSql(database, "PRAGMA main.application_id = " + std::to_string(kApplicationId));
}

}  // namespace tessarlorn::tsql
