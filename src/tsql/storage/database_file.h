// Opening the file of an embedded database: what the connection string asks for, and whose file it is.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tsql/storage/sqlite_handle.h"
#include "tsql/values/text_order.h"

namespace tessarlorn::tsql {

struct DatabaseOptions {
  /// A file, or ":memory:NAME".
  std::string file;
  std::chrono::seconds timeout{30};
  /// Whether a commit waits for the disk.
  bool full = true;
  /// Bytes that a batch may take, see MemoryBudget.
  std::size_t memory = std::size_t{1} << 30;
  /// Megabytes of the file's pages that a connection keeps in memory, and that a sort fills before it goes to a file.
  int cache = 64;
  /// How texts are to sort; none takes what the file has, code points in a new one.
  std::optional<TextOrder> text_order;

  [[nodiscard]] bool in_memory() const { return file.starts_with(":memory:"); }
};

/// Raises 0x80040E4D naming an unknown key or value.
DatabaseOptions ParseDatabaseOptions(std::string_view text);

enum class MissingFile : std::uint8_t { kMake, kRefuse };

/// A connection of SQLite's with the settings that all of ours have.
struct OpenedDatabase {
  DatabaseHandle handle;
  /// The disk was too full for the file in which SQLite keeps its locks. The connection can read and not write.
  bool reads_only = false;
};

/// Opens the database, and makes it when it is not there. Raises 0x80040E4D (native 4060) naming a file that is another
/// program's, that may not be written, that cannot be there, or whose texts sort otherwise, and SqlError 824 for one
/// that is damaged. A file that is refused stays as it is.
OpenedDatabase OpenDatabase(const DatabaseOptions& options, MissingFile missing = MissingFile::kMake);

/// Opens a file for reading. Nothing is written, not even beside it. Raises like OpenDatabase.
DatabaseHandle OpenForReading(const std::string& file);

/// How the texts of an opened database sort; it is one of ours.
TextOrder TextOrderOf(sqlite3* database);

/// Opens an empty file that is to become a copy. It is on the disk when its contents are committed.
DatabaseHandle OpenCopy(const std::string& file);

/// Gives the file the mark by which it is known as ours, where it has none: files of earlier versions. Within the
/// caller's transaction.
void MarkAsOurs(sqlite3* database);

/// How long a reader waits at most when another program opens or closes the file, or repairs it after a crash. Readers
/// wait for nothing else, and writers as long as the connection string says.
inline constexpr std::chrono::seconds kLongestReadWait{5};

}  // namespace tessarlorn::tsql
