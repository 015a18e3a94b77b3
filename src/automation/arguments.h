// The arguments of a call by name: how many may be given, and what stands for those that are left out.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "tessarlorn/error.h"
#include "tessarlorn/operations.h"

namespace tessarlorn {

/// 449 naming the argument. @param member "Class.Member"
[[noreturn]] inline void RaiseArgumentMissing(const Argument& argument, const std::string& member) {
  Raise(error_number::kArgumentNotOptional, "Argument not optional: " + std::string(argument.name) + " of " + member);
}

template <typename Describe, typename Call>
Variant FillAndCall(std::span<const Argument> declared, std::span<Variant> given, bool put, const Describe& describe,
                    const Call& call) {
  const std::size_t value = put ? 1 : 0;
  const std::size_t wanted = declared.size() + value;
  if (given.size() > wanted) Raise(error_number::kWrongArgumentCount, "Wrong number of arguments: " + describe());
  if (given.size() < value) Raise(error_number::kArgumentNotOptional, "Argument not optional: " + describe());
  const std::size_t count = given.size() - value;
  for (const Argument& argument : declared.subspan(count)) {
    if (!argument.optional) RaiseArgumentMissing(argument, describe());
  }
  std::vector<Variant> filled(wanted);
  std::copy_n(given.begin(), count, filled.begin());
  if (put) filled.back() = given.back();
  Variant result = call(std::span(filled));
  std::copy_n(filled.begin(), count, given.begin());
  return result;
}

/// Answers what `call` answers for as many values as are declared, and for the new value of a property behind them when
/// `put` says that the last given one is it; optional ones that are left out at the end are Empty. What it writes into
/// given ones stays there. Raises 450 for too many, 449 for too few. @param describe answers "Class.Member"
template <typename Describe, typename Call>
Variant CallWithAllArguments(std::span<const Argument> declared, std::span<Variant> given, bool put,
                             const Describe& describe, const Call& call) {
  // Nothing is left out: no copy is needed.
  if (given.size() == declared.size() + (put ? 1 : 0)) return call(given);
  return FillAndCall(declared, given, put, describe, call);
}

}  // namespace tessarlorn
