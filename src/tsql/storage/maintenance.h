// Looking after the file of an embedded database: checking it, copying it while it is used, and putting a copy back.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarlorn {

struct EmbeddedCheck {
  std::string file;
  std::int64_t tables = 0;
  std::int64_t bytes = 0;
  /// What is wrong, one sentence each; empty for a sound file.
  std::vector<std::string> faults;
};

/// Told now and then how many pages of how many are copied. What it raises ends the copying and undoes it.
using PagesCopied = std::function<void(int done, int total)>;

// All three take a string "Embedded=…" of a file that is there, and raise `Error` like a connection to it. They may run
// while others use the database; they wait for its writers as long as the string says.

/// Reads every page, row and index, and compares the definitions with the tables.
EmbeddedCheck CheckEmbedded(std::string_view database_string);

/// Copies the database, as it is when this begins, into `file`, which takes its name when it is complete and on the
/// disk. An earlier backup of that name is replaced; raises 58 naming it for a file that is no database of ours or is
/// in use, and 76 for a folder that is not there. Until then the copy is called `file` with ".part-" and a number
/// behind it; a killed backup leaves that.
void BackUpEmbedded(std::string_view database_string, const std::string& file, const PagesCopied& progress);

/// Puts the copy in `file` in the place of all that the database holds, in one transaction; the database is made when
/// it is not there. Readers see the old contents until the end. Raises 0x80040E4D for what is no database of ours, and
/// 0x80004005 (native 824) with the first fault for one that is damaged; the database stays as it was then.
void RestoreEmbedded(std::string_view database_string, const std::string& file, const PagesCopied& progress);

}  // namespace tessarlorn
