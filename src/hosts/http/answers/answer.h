// What a call answers, as JSON, CSV or lines of JSON; rows are written while they are read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/calls/dry_run.h"
#include "hosts/calls/json_text.h"
#include "hosts/calls/save_point.h"
#include "hosts/http/transport/exchange.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/operations.h"

namespace tessarlorn::http {

enum class AnswerFormat : std::uint8_t {
  /// An object: `result`, and beside it `arguments`, `notFound`, `orders`, `dryRun` where there are any.
  kJson,
  /// One JSON value a line: the rows, or the result.
  kJsonLines,
  /// A line of heads and a line a row.
  kCsv,
};

/// The format that a header Accept asks for, JSON when it asks for nothing; nothing when it wants none that there is.
std::optional<AnswerFormat> FormatFor(std::string_view accept);
std::string_view MediaType(AnswerFormat format);

/// What stands in an answer beside the result.
struct Beside {
  /// Arguments that were written back.
  Dictionary arguments = {};
  /// Orders that were named and are not there, or not for this user.
  std::vector<std::string> not_found = {};
  /// Of a call order by order; then there is no result.
  std::optional<std::vector<OrderOutcome>> orders = {};
  std::optional<Dictionary> dry_run = {};
};

/// A whole answer as text. Raises WrongCall for a column that the result does not have.
std::string AnswerText(AnswerFormat format, const std::vector<std::string>& columns, const Variant& result,
                       const Beside& beside);

/// An answer of the door's own. @param body JSON
Response JsonResponse(std::string body, int status = 200);

/// How the rows of a recordset stand in a body, and what stands around them.
class RowsText {
 public:
  /// Raises WrongCall for a column that the recordset does not have.
  RowsText(AnswerFormat format, const RecordsetPtr& rows, const std::vector<std::string>& columns);
  void AppendHead(std::string& text) const;
  /// Of JSON: what stands in front of the rows within their object.
  void AppendFields(std::string& text) const;
  /// All rows of a recordset, of this one or another with the same fields. @param first whether none stand before them
  void AppendRows(std::string& text, Recordset& rows, bool first = true) const;
  void AppendTail(std::string& text, const Beside& beside) const;

 private:
  AnswerFormat format_;
  ResultRows shown_;
  JsonRows objects_;
};

/// Writes an answer to its client: at once when it is short, in parts while its rows come when it is long.
class StreamedAnswer final : public AnswerSink {
 public:
  /// @param head of the answer, but for its type
  /// @param most rows that an answer may have
  StreamedAnswer(Exchange& exchange, AnswerFormat format, std::vector<std::string> columns, Response head,
                 std::size_t most)
      : exchange_(exchange), format_(format), columns_(std::move(columns)), head_(std::move(head)), left_(most) {}

  /// Raises WrongCall as AnswerText, Refusal 422 for too many rows, and ClientGone.
  void PartOfAnswer(Recordset& rows) override;
  /// The last rows, or the whole result. Raises the same.
  void Finish(const Variant& result, const Beside& beside);

 private:
  void CountRows(const Recordset& rows);
  void AppendRows(Recordset& rows);

  Exchange& exchange_;
  AnswerFormat format_;
  std::vector<std::string> columns_;
  Response head_;
  std::optional<RowsText> rows_text_;
  std::size_t left_;
  std::string text_;
  bool first_ = true;
};

}  // namespace tessarlorn::http
