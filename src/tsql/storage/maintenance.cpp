#include "tsql/storage/maintenance.h"

#include <filesystem>
#include <random>
#include <system_error>
#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

#include "platform/file_path.h"
#include "tessarlorn/error.h"
#include "tsql/functions/functions.h"
#include "tsql/storage/database_file.h"

namespace tessarlorn {
namespace {

using tsql::DatabaseHandle;
using tsql::DatabaseOptions;
using tsql::MissingFile;
using tsql::RaiseSqlite;
using tsql::RunSql;
using tsql::SqlError;
using tsql::SqliteStatement;

/// A file that exists where a new one is wanted, and a folder that does not.
constexpr std::int32_t kFileExists = 58;
constexpr std::int32_t kPathNotFound = 76;
/// Between two reports of progress.
constexpr int kPagesAStep = 4096;

[[noreturn]] void RaiseFile(std::int32_t number, const std::string& file, const std::string& why) {
  throw Error(number, "TessarLorn embedded database", "'" + file + "' " + why, {});
}

template <typename Body>
auto Translated(const Body& body) {
  try {
    return body();
  } catch (const SqlError& error) {
    throw tsql::ToError(error);
  }
}

DatabaseOptions FileOptions(std::string_view database_string) {
  DatabaseOptions options = tsql::ParseDatabaseOptions(database_string);
  if (options.in_memory()) RaiseFile(error_number::kInvalidArgument, options.file, "is in memory, and no file.");
  return options;
}

/// The texts that a query answers in its first column.
std::vector<std::string> Texts(sqlite3* database, std::string_view sql) {
  std::vector<std::string> texts;
  SqliteStatement statement(database, sql);
  while (statement.Step()) texts.push_back(statement.Text(0));
  return texts;
}

std::vector<std::string> FaultsOf(sqlite3* database) {
  // Text is ordered by our collation, and indexes by our functions.
  tsql::Runtime runtime(tsql::MemoryBudget::kDefaultLimit);
  runtime.text_order = tsql::TextOrderOf(database);
  RegisterFunctions(database, runtime);
  std::vector<std::string> faults;
  const auto add = [&](std::string_view sql) {
    for (std::string& fault : Texts(database, sql)) {
      if (fault != "ok") faults.push_back(std::move(fault));
    }
  };
  try {
    add("PRAGMA integrity_check");
    add(R"(SELECT 'row ' || rowid || ' of ' || "table" || ' refers to a missing row of ' || parent
FROM pragma_foreign_key_check)");
    add(R"(SELECT 'table ' || name || ' is defined and not there' FROM "$objects" o WHERE kind = 'table' AND NOT EXISTS
 (SELECT 1 FROM sqlite_schema s WHERE s.type = 'table' AND s.name = o.name COLLATE NOCASE))");
    add(R"(SELECT 'table ' || name || ' is there and not defined' FROM sqlite_schema s WHERE type = 'table'
 AND name NOT LIKE '$%' AND name NOT LIKE 'sqlite\_%' ESCAPE '\' AND NOT EXISTS
 (SELECT 1 FROM "$objects" o WHERE o.name = s.name COLLATE NOCASE))");
    add(R"(SELECT 'column ' || o.name || '.' || c.name || ' is defined and not there' FROM "$columns" c
 JOIN "$objects" o ON o.id = c.object WHERE o.kind = 'table' AND NOT EXISTS
 (SELECT 1 FROM pragma_table_xinfo(o.name) i WHERE i.name = c.name COLLATE NOCASE))");
  } catch (const SqlError& error) {
    // Reading ended at the damage.
    if (error.number() != 823 && error.number() != 824) throw;
    faults.emplace_back(error.what());
  }
  return faults;
}

/// Copies all of `from` into `to`. Both may be used by others.
void Copy(sqlite3* to, sqlite3* from, const PagesCopied& progress) {
  struct Finish {
    void operator()(sqlite3_backup* backup) const noexcept { sqlite3_backup_finish(backup); }
  };
  std::unique_ptr<sqlite3_backup, Finish> backup(sqlite3_backup_init(to, "main", from, "main"));
  if (backup == nullptr) RaiseSqlite(to, sqlite3_errcode(to), nullptr);
  int status = SQLITE_OK;
  while ((status = sqlite3_backup_step(backup.get(), kPagesAStep)) == SQLITE_OK) {
    const int total = sqlite3_backup_pagecount(backup.get());
    if (progress) progress(total - sqlite3_backup_remaining(backup.get()), total);
  }
  const int total = sqlite3_backup_pagecount(backup.get());
  status = sqlite3_backup_finish(backup.release());
  if (status != SQLITE_OK) RaiseSqlite(to, status, nullptr);
  if (progress) progress(total, total);
}

/// While it lives, the connection reads one commit, whatever others write.
class Snapshot {
 public:
  explicit Snapshot(sqlite3* database) : database_(database) {
    RunSql(database_, "BEGIN; SELECT count(*) FROM sqlite_schema");
  }
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;
  ~Snapshot() { sqlite3_exec(database_, "COMMIT", nullptr, nullptr, nullptr); }

 private:
  sqlite3* database_;
};

/// A new file beside the one that it becomes.
class PartialFile {
 public:
  explicit PartialFile(const std::string& file) : path_(file + ".part-" + std::to_string(std::random_device()())) {}
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;
  ~PartialFile() {
    std::error_code ignored;
    std::filesystem::remove(ToPath(path_), ignored);
  }
  [[nodiscard]] const std::string& path() const noexcept { return path_; }
  void Become(const std::string& file) const {
    std::error_code fault;
    std::filesystem::rename(ToPath(path_), ToPath(file), fault);
    if (fault) RaiseFile(error_number::kDatabaseFailure, file, "cannot be replaced: " + fault.message() + ".");
#ifndef _WIN32
    // The name is on the disk when its folder is.
    const std::filesystem::path folder = ToPath(file).parent_path();
    const int descriptor = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
      fsync(descriptor);
      close(descriptor);
    }
#endif
  }

 private:
  std::string path_;
};

/// Raises 76 without a folder for the file, 58 unless the file is not there or is a copy that nobody has open.
void RequireReplaceable(const std::string& file, const std::string& source) {
  std::error_code ignored;
  const std::filesystem::path path = ToPath(file);
  const std::filesystem::path folder = path.parent_path();
  if (!folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
    RaiseFile(kPathNotFound, file, "cannot be made: its folder does not exist.");
  }
  if (!std::filesystem::exists(path, ignored)) return;
  if (std::filesystem::equivalent(path, ToPath(source), ignored))
    RaiseFile(kFileExists, file, "is the database itself.");
  try {
    tsql::OpenForReading(file);
  } catch (const Error&) {
    RaiseFile(kFileExists, file, "is there already and is no database of ours. It was left as it is.");
  } catch (const SqlError&) {
    RaiseFile(kFileExists, file, "is there already and is no database of ours. It was left as it is.");
  }
  for (const char* beside : {"-wal", "-shm", "-journal"}) {
    if (std::filesystem::exists(ToPath(file + beside), ignored)) {
      RaiseFile(kFileExists, file, "is in use: '" + file + beside + "' lies beside it. It was left as it is.");
    }
  }
}

tsql::OpenedDatabase OpenTarget(const DatabaseOptions& options) {
  try {
    return tsql::OpenDatabase(options);
  } catch (const SqlError& error) {
    if (error.number() != 824) throw;
    throw SqlError(
        824, std::string(error.what()) + " Move it away, with the files -wal and -shm beside it, and restore again.",
        24);
  }
}

}  // namespace

EmbeddedCheck CheckEmbedded(std::string_view database_string) {
  return Translated([&] {
    const DatabaseOptions options = FileOptions(database_string);
    EmbeddedCheck check;
    check.file = options.file;
    try {
      const tsql::OpenedDatabase opened = tsql::OpenDatabase(options, MissingFile::kRefuse);
      sqlite3* const database = opened.handle.get();
      const Snapshot snapshot(database);
      check.faults = FaultsOf(database);
      if (check.faults.empty()) {
        check.tables = std::stoll(Texts(database, R"(SELECT count(*) FROM "$objects" WHERE kind = 'table')")[0]);
      }
      check.bytes =
          std::stoll(Texts(database, "PRAGMA page_count")[0]) * std::stoll(Texts(database, "PRAGMA page_size")[0]);
    } catch (const SqlError& error) {
      if (error.number() != 823 && error.number() != 824) throw;
      check.faults.emplace_back(error.what());
    }
    return check;
  });
}

void BackUpEmbedded(std::string_view database_string, const std::string& file, const PagesCopied& progress) {
  Translated([&] {
    const DatabaseOptions options = FileOptions(database_string);
    const tsql::OpenedDatabase source = tsql::OpenDatabase(options, MissingFile::kRefuse);
    RequireReplaceable(file, options.file);
    const PartialFile partial(file);
    {
      const Snapshot snapshot(source.handle.get());
      const DatabaseHandle copy = tsql::OpenCopy(partial.path());
      Copy(copy.get(), source.handle.get(), progress);
    }
    // Somebody may have made the file meanwhile.
    RequireReplaceable(file, options.file);
    partial.Become(file);
  });
}

void RestoreEmbedded(std::string_view database_string, const std::string& file, const PagesCopied& progress) {
  Translated([&] {
    DatabaseOptions options = FileOptions(database_string);
    std::error_code ignored;
    if (std::filesystem::equivalent(ToPath(file), ToPath(options.file), ignored)) {
      RaiseFile(kFileExists, file, "is the database itself.");
    }
    const std::filesystem::path log = ToPath(file + "-wal");
    if (std::filesystem::exists(log, ignored) && std::filesystem::file_size(log, ignored) > 0) {
      RaiseFile(kFileExists, file, "is in use, and no copy: '" + file + "-wal' holds a part of it. Back it up first.");
    }
    const DatabaseHandle source = tsql::OpenForReading(file);
    const std::vector<std::string> faults = FaultsOf(source.get());
    if (!faults.empty()) throw SqlError(824, "The database '" + file + "' is damaged: " + faults.front(), 24);
    const tsql::TextOrder order = tsql::TextOrderOf(source.get());
    if (!options.text_order && !std::filesystem::exists(ToPath(options.file), ignored)) options.text_order = order;
    const tsql::OpenedDatabase target = OpenTarget(options);
    // Whoever has the target open goes on sorting as they do.
    const tsql::TextOrder target_order = tsql::TextOrderOf(target.handle.get());
    if (target_order != order) {
      RaiseFile(error_number::kInvalidArgument, file,
                "cannot be restored into '" + options.file + "': its texts are sorted by " +
                    std::string(TextOrderName(order)) + ", those there by " + std::string(TextOrderName(target_order)) +
                    ".");
    }
    if (target.reads_only) throw SqlError(1105, "The disk of '" + options.file + "' is full.", 17);
    Copy(target.handle.get(), source.get(), progress);
  });
}

}  // namespace tessarlorn
