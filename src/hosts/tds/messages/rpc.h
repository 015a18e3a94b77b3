// Calls of procedures: read from a request, and turned into calls of the database.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "hosts/tds/messages/parameter.h"
#include "hosts/tds/messages/tds_reader.h"

namespace tessarlorn::tds {

/// The calls that the server knows by number.
enum class KnownProcedure : std::uint16_t {
  kNone = 0,
  kExecuteSql = 10,
  kPrepare = 11,
  kExecute = 12,
  kPrepareAndExecute = 13,
  kUnprepare = 15,
};

struct Call {
  KnownProcedure procedure = KnownProcedure::kNone;
  /// As the client wrote it, when it is none of the known.
  std::string name;
  std::vector<SqlParameter> parameters;
  /// The client sent it, and does not want it run.
  bool is_unwanted = false;
};

/// Reads the calls of a request one by one: a small request can hold many.
class CallReader {
 public:
  /// @param reader stands behind the request's headers, and lives as long as this
  CallReader(TdsReader& reader, TdsVersion version) : reader_(reader), version_(version) {}

  /// False while there is a call to read. A request has one at least.
  [[nodiscard]] bool at_end() const noexcept { return at_end_; }
  /// The next call. Raises what ReadParameter raises, Error 2812 for a procedure number that is not supported, and
  /// Error 40000 when there are too many calls; nothing can be read behind an error.
  Call Next();

 private:
  TdsReader& reader_;
  TdsVersion version_;
  std::size_t read_ = 0;
  bool at_end_ = false;
  bool next_is_unwanted_ = false;
};

/// A statement that a client prepared.
struct Prepared {
  std::string statement;
  std::string declarations;
};

/// The statements that a client has prepared, by their handles.
class PreparedStatements {
 public:
  /// Raises Error 8180 when there are too many, or their texts too long.
  std::int32_t Add(Prepared prepared);
  /// Raises Error 8179 for a handle that there is not.
  [[nodiscard]] const Prepared& Get(std::int64_t handle) const;
  void Remove(std::int64_t handle);
  void Clear() noexcept;

 private:
  std::map<std::int64_t, Prepared> prepared_;
  std::size_t bytes_ = 0;
  std::int32_t last_ = 0;
};

/// What the database is asked for a call.
struct DatabaseCall {
  /// "" when nothing is to be run.
  std::string procedure;
  std::vector<SqlParameter> parameters;
  /// The place of the first parameter that the client gave, here and in its call.
  std::size_t first_here = 0;
  std::size_t first_of_call = 0;
  /// The handle that a prepare gives.
  std::optional<std::int32_t> handle;
};

/// Prepares and forgets statements, and tells what else is to be run; it takes the parameters of the call. A handle
/// that it gives is to be removed when that fails.
DatabaseCall TakeCall(Call& call, PreparedStatements& prepared);

}  // namespace tessarlorn::tds
