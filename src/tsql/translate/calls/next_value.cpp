// NEXT VALUE FOR.
#include "tsql/translate/calls/call_topics.h"
#include "tsql/translate/common/function_text.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

[[noreturn]] void RaiseMisplaced(NumberPlace place) {
  const auto raise = [](std::int32_t number, const std::string& rest) {
    throw SqlError(number, "NEXT VALUE FOR function " + rest, 15);
  };
  switch (place) {
    case NumberPlace::kClause:
      raise(11720, "is not allowed in the TOP, OVER, OUTPUT, ON, WHERE, GROUP BY, HAVING, or ORDER BY clauses.");
      break;
    case NumberPlace::kSet:
      raise(11721,
            "cannot be used directly in a statement that uses a DISTINCT, UNION, UNION ALL, EXCEPT or INTERSECT "
            "operator.");
      break;
    case NumberPlace::kOrdered:
      raise(11723,
            "cannot be used directly in a statement that contains an ORDER BY clause unless the OVER clause is "
            "specified.");
      break;
    case NumberPlace::kTop:
      raise(11739, "cannot be used if ROWCOUNT option has been set, or the query contains TOP or OFFSET.");
      break;
    case NumberPlace::kOptional:
      raise(11741, "cannot be used within CASE, CHOOSE, COALESCE, IIF, ISNULL and NULLIF.");
      break;
    case NumberPlace::kMerge:
      raise(11742,
            "can only be used with MERGE if it is defined within a default constraint on the target table for insert "
            "actions.");
      break;
    default:
      break;
  }
  throw NoNumbersHere();
}

}  // namespace

Typed NextValueOf(Translation& translation, const NextValue& next) {
  if (translation.merges && translation.parameters.definition_depth() == 0) RaiseMisplaced(NumberPlace::kMerge);
  if (translation.numbers != NumberPlace::kHere) RaiseMisplaced(translation.numbers);
  const CatalogObjectPtr sequence = translation.Note(next.sequence);
  if (sequence == nullptr) RaiseNoObject(next.sequence);
  if (sequence->kind != CatalogKind::kSequence) {
    throw SqlError(11726, "Object '" + WrittenName(next.sequence) + "' is not a sequence object.");
  }
  return {"ts_next(" + QuoteText(sequence->name) + ", " + std::to_string(translation.number_places++) + ")",
          sequence->columns[0].type, false, -1};
}

}  // namespace tessarlorn::tsql
