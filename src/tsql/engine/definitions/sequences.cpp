// CREATE and ALTER SEQUENCE.
#include <algorithm>
#include <limits>
#include <utility>

#include "tsql/engine/definitions/definitions.h"
#include "tsql/translate/common/function_text.h"

namespace tessarlorn::tsql {
namespace {

struct Range {
  std::int64_t least = 0;
  std::int64_t most = 0;
};

Range RangeOf(const SqlType& type, const std::string& sequence) {
  switch (type.kind) {
    case FieldType::kTinyInt:
      return {0, 255};
    case FieldType::kSmallInt:
      return {INT16_MIN, INT16_MAX};
    case FieldType::kInt:
      return {INT32_MIN, INT32_MAX};
    case FieldType::kBigInt:
      return {INT64_MIN, INT64_MAX};
    default:
      break;
  }
  if (type.kind != FieldType::kDecimal || type.scale != 0) {
    throw SqlError(11702, "The sequence object '" + sequence +
                              "' must be of data type int, bigint, smallint, tinyint, or decimal or numeric with a "
                              "scale of 0, or any user-defined data type that is based on one of the above integer "
                              "data types.");
  }
  if (type.storage() != Storage::kScaled) RaiseUnsupported("A sequence of a decimal beyond 18 digits");
  std::int64_t most = 1;
  for (int i = 0; i < type.precision; ++i) most *= 10;
  return {1 - most, most - 1};
}

/// Raises 11708 for a number that the type cannot hold.
void RequireIn(const Range& range, std::int64_t number, const char* argument) {
  if (number >= range.least && number <= range.most) return;
  throw SqlError(
      11708, std::string("An invalid value was specified for argument '") + argument + "' for the given data type.");
}

/// Takes what the statement says over what is there. @param fresh the sequence is a new one
void Apply(SequenceDefinition& definition, const SequenceOptions& options, const Range& range, bool fresh) {
  if (options.increment) definition.increment = *options.increment;
  if (options.minimum || fresh) definition.minimum = options.minimum.value_or(std::nullopt).value_or(range.least);
  if (options.maximum || fresh) definition.maximum = options.maximum.value_or(std::nullopt).value_or(range.most);
  if (options.cycles) definition.cycles = *options.cycles;
  if (options.cache) definition.cache = *options.cache;
  if (fresh) definition.start = definition.increment < 0 ? definition.maximum : definition.minimum;
  if (options.start) definition.start = *options.start;
  if (options.restart) definition.start = *options.restart;
  RequireIn(range, definition.minimum, "MINVALUE");
  RequireIn(range, definition.maximum, "MAXVALUE");
  RequireIn(range, definition.start, options.restart ? "RESTART WITH" : "START WITH");
}

/// Raises 11700, 11701, 11703 and 11705.
void RequireSound(const SequenceDefinition& definition, const std::string& sequence) {
  const std::string it = "sequence object '" + sequence + "'";
  if (definition.increment == 0) throw SqlError(11700, "The increment for " + it + " cannot be zero.");
  if (definition.minimum >= definition.maximum) {
    throw SqlError(11705, "The minimum value for " + it + " must be less than its maximum value.");
  }
  // Of numbers of 64 bits the difference takes one bit more.
  const auto span = static_cast<std::uint64_t>(definition.maximum) - static_cast<std::uint64_t>(definition.minimum);
  const auto step = static_cast<std::uint64_t>(definition.increment);
  if ((definition.increment < 0 ? 0 - step : step) > span) {
    throw SqlError(11701, "The absolute value of the increment for " + it +
                              " must be less than or equal to the difference between the minimum and maximum value of "
                              "the sequence object.");
  }
  if (definition.start < definition.minimum || definition.start > definition.maximum) {
    throw SqlError(11703, "The start value for " + it +
                              " must be between the minimum and maximum value of the sequence "
                              "object.");
  }
}

}  // namespace

void Definitions::DefineSequence(const SequenceStatement& statement, SequenceNumbers& numbers) {
  RequireLocal(statement.sequence);
  const CatalogObjectPtr old = statement.alter ? database_.catalog().Find(statement.sequence.name) : nullptr;
  if (statement.alter && (old == nullptr || old->kind != CatalogKind::kSequence)) RaiseNoObject(statement.sequence);
  const std::string name = WrittenName(statement.sequence);
  const SequenceOptions& options = statement.options;
  CatalogObject sequence = NewObject(CatalogKind::kSequence, statement.sequence);
  SqlType type = old == nullptr ? BigIntType() : old->columns[0].type;
  if (options.type) type = ResolveType(*options.type, false);
  sequence.columns.push_back({"", type, false, false, ""});
  SequenceDefinition definition;
  if (old != nullptr) definition = ReadSequence(database_.handle(), *old);
  Apply(definition, options, RangeOf(type, name), old == nullptr);
  RequireSound(definition, name);
  const std::optional<std::int64_t> last = old == nullptr || options.restarts ? std::nullopt : numbers.Last(old->id);
  if (last && (*last < definition.minimum || *last > definition.maximum)) {
    throw SqlError(11704, "The current value '" + std::to_string(*last) + "' for sequence object '" + name +
                              "' must be between the minimum and maximum value of the sequence object.");
  }
  sequence.definition = SequenceText(definition);
  if (old != nullptr) numbers.Redefine(*old, options.restarts);
  AddObject(std::move(sequence), statement.alter);
}

}  // namespace tessarlorn::tsql
