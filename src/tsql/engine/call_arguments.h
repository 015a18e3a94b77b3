// The arguments of a call, whoever makes it: a batch's EXEC, or a caller of the session with typed parameters.
#pragma once

#include <cstddef>
#include <string>

#include "tsql/values/datum.h"

namespace tessarlorn::tsql {

class CallArguments {
 public:
  CallArguments() = default;
  CallArguments(const CallArguments&) = delete;
  CallArguments& operator=(const CallArguments&) = delete;
  virtual ~CallArguments() = default;

  [[nodiscard]] virtual std::size_t size() const = 0;
  /// In lower case with its @, "" for one by position.
  [[nodiscard]] virtual std::string name(std::size_t argument) const = 0;
  /// The procedure's own default counts.
  [[nodiscard]] virtual bool is_default(std::size_t argument) const = 0;
  /// The value as the parameter that it goes to has it. Raises what the conversion raises.
  virtual Datum Value(std::size_t argument, const SqlType& type) = 0;
  /// What the call left in the parameter; it counts when the argument is an output.
  virtual void TakeBack(std::size_t argument, const Datum& value, const SqlType& type) = 0;
  /// What a procedure or function returned.
  virtual void TakeStatus(const Datum& status, const SqlType& type) = 0;
};

}  // namespace tessarlorn::tsql
