#include "hosts/http/answers/answer.h"

#include <array>
#include <cstdlib>
#include <utility>

#include "hosts/calls/csv_text.h"
#include "hosts/calls/result_rows.h"
#include "hosts/http/answers/problem.h"
#include "platform/text/text.h"
#include "tessarlorn/sql_command.h"

namespace tessarlorn::http {
namespace {

struct Format {
  AnswerFormat format;
  std::string_view type;
  std::string_view sent;
};

constexpr std::array kFormats = {
    Format{AnswerFormat::kJson, "application/json", "application/json"},
    Format{AnswerFormat::kJsonLines, "application/x-ndjson", "application/x-ndjson"},
    Format{AnswerFormat::kCsv, "text/csv", "text/csv; charset=utf-8"},
};

void AppendArray(std::string& json, const std::vector<std::string>& texts) {
  json += '[';
  for (const std::string& text : texts) {
    if (json.back() != '[') json += ',';
    AppendJsonText(json, text);
  }
  json += ']';
}

void AppendValue(std::string& json, const Variant& value) {
  AppendJson(json, value, FieldType::kNVarChar, LongNumbers::kAsTexts);
}

/// A result as a member: a recordset is an object with fields and rows.
void AppendResult(std::string& json, const Variant& result, const std::vector<std::string>& columns) {
  const RecordsetPtr rows = result.ToRecordset();
  if (!rows) {
    AppendValue(json, result);
    return;
  }
  const RowsText text(AnswerFormat::kJson, rows, columns);
  text.AppendFields(json);
  text.AppendRows(json, *rows);
  json += "]}";
}

void AppendOutcome(std::string& json, const OrderOutcome& outcome, const std::vector<std::string>& columns) {
  json += "{\"order\":";
  AppendJsonText(json, outcome.order);
  if (outcome.error) {
    json += ",\"problem\":" + ProblemJson(ProblemOf(*outcome.error), "");
  } else {
    json += ",\"result\":";
    AppendResult(json, outcome.result, columns);
  }
  json += '}';
}

/// The members behind the result, with a comma in front of each.
void AppendBeside(std::string& json, const Beside& beside) {
  if (!beside.arguments.empty()) {
    json += ",\"arguments\":";
    AppendValue(json, std::make_shared<Dictionary>(beside.arguments));
  }
  if (!beside.not_found.empty()) {
    json += ",\"notFound\":";
    AppendArray(json, beside.not_found);
  }
  if (beside.dry_run) {
    json += ",\"dryRun\":";
    AppendValue(json, std::make_shared<Dictionary>(*beside.dry_run));
  }
}

/// A value that is no recordset, as a whole body.
std::string ValueText(AnswerFormat format, const Variant& result, const Beside& beside) {
  std::string text;
  if (format == AnswerFormat::kCsv) {
    const RecordsetPtr rows = RowsOf(result);
    const ResultRows shown = SelectColumns(rows, {});
    AppendCsvHeads(text, shown);
    if (!result.is_object()) {
      return text + EscapedCsv(CellText(result, FieldType::kNVarChar, CellStyle::kData)) + "\r\n";
    }
    for (rows->MoveFirst(); !rows->eof(); rows->MoveNext()) AppendCsvRow(text, *rows, shown);
  } else if (format == AnswerFormat::kJsonLines) {
    AppendValue(text, result);
    text += '\n';
  } else {
    text = "{\"result\":";
    AppendValue(text, result);
    AppendBeside(text, beside);
    text += '}';
  }
  return text;
}

/// The outcomes of a call order by order.
std::string OutcomesText(AnswerFormat format, const Beside& beside, const std::vector<std::string>& columns) {
  std::string text = format == AnswerFormat::kJson ? "{\"orders\":[" : "";
  if (format == AnswerFormat::kCsv) text = "order,result,problem\r\n";
  for (const OrderOutcome& outcome : *beside.orders) {
    if (format != AnswerFormat::kCsv) {
      if (format == AnswerFormat::kJson && text.back() != '[') text += ',';
      AppendOutcome(text, outcome, columns);
      if (format == AnswerFormat::kJsonLines) text += '\n';
      continue;
    }
    text += EscapedCsv(outcome.order) + ",";
    if (outcome.error) {
      text += "," + EscapedCsv(outcome.error->description());
    } else {
      text += EscapedCsv(CellText(outcome.result, FieldType::kNVarChar, CellStyle::kData)) + ",";
    }
    text += "\r\n";
  }
  if (format != AnswerFormat::kJson) return text;
  text += ']';
  AppendBeside(text, beside);
  return text + "}";
}

}  // namespace

std::optional<AnswerFormat> FormatFor(std::string_view accept) {
  if (Trim(accept).empty()) return AnswerFormat::kJson;
  std::optional<AnswerFormat> best;
  double best_weight = 0;
  for (const std::string_view part : Split(accept, ',')) {
    const std::string_view type = Trim(part.substr(0, part.find(';')));
    const std::size_t weight_at = part.find("q=");
    const double weight =
        weight_at == std::string_view::npos ? 1 : std::strtod(std::string(part.substr(weight_at + 2)).c_str(), nullptr);
    for (const Format& format : kFormats) {
      const bool any =
          type == "*/*" || EqualsIgnoreCase(type, std::string(format.type.substr(0, format.type.find('/'))) + "/*");
      if ((!any && !EqualsIgnoreCase(type, format.type)) || weight <= best_weight) continue;
      best = format.format;
      best_weight = weight;
    }
  }
  return best;
}

std::string_view MediaType(AnswerFormat format) { return kFormats[static_cast<std::size_t>(format)].sent; }

std::string AnswerText(AnswerFormat format, const std::vector<std::string>& columns, const Variant& result,
                       const Beside& beside) {
  if (beside.orders) return OutcomesText(format, beside, columns);
  const RecordsetPtr rows = result.ToRecordset();
  if (!rows) return ValueText(format, result, beside);
  const RowsText rows_text(format, rows, columns);
  std::string text;
  rows_text.AppendHead(text);
  rows_text.AppendRows(text, *rows);
  rows_text.AppendTail(text, beside);
  return text;
}

Response JsonResponse(std::string body, int status) {
  return {.status = status,
          .headers = {{"Content-Type", "application/json"}, {"Cache-Control", "no-store"}},
          .body = std::move(body)};
}

RowsText::RowsText(AnswerFormat format, const RecordsetPtr& rows, const std::vector<std::string>& columns)
    : format_(format), shown_(SelectColumns(rows, columns)), objects_(shown_, LongNumbers::kAsTexts) {}

void RowsText::AppendHead(std::string& text) const {
  if (format_ == AnswerFormat::kCsv) AppendCsvHeads(text, shown_);
  if (format_ != AnswerFormat::kJson) return;
  text += "{\"result\":";
  AppendFields(text);
}

void RowsText::AppendFields(std::string& text) const {
  text += "{\"fields\":[";
  for (std::size_t i = 0; i < shown_.fields.size(); ++i) {
    text += i == 0 ? "{\"name\":" : ",{\"name\":";
    AppendJsonText(text, objects_.keys()[i]);
    text += ",\"type\":";
    AppendJsonText(text, TypeWordOf(shown_.rows->fields()[shown_.fields[i]].type));
    text += '}';
  }
  text += "],\"rows\":[";
}

void RowsText::AppendRows(std::string& text, Recordset& rows, bool first) const {
  for (rows.MoveFirst(); !rows.eof(); rows.MoveNext()) {
    if (format_ == AnswerFormat::kCsv) {
      AppendCsvRow(text, rows, shown_);
      continue;
    }
    if (format_ == AnswerFormat::kJson && !std::exchange(first, false)) text += ',';
    objects_.AppendObject(text, rows);
    if (format_ == AnswerFormat::kJsonLines) text += '\n';
  }
}

void RowsText::AppendTail(std::string& text, const Beside& beside) const {
  if (format_ != AnswerFormat::kJson) return;
  text += "]}";
  AppendBeside(text, beside);
  text += '}';
}

void StreamedAnswer::CountRows(const Recordset& rows) {
  if (rows.RecordCount() > left_) Refuse(422, "the answer has too many rows for this server; ask for fewer");
  left_ -= rows.RecordCount();
}

void StreamedAnswer::AppendRows(Recordset& rows) {
  rows_text_->AppendRows(text_, rows, first_);
  first_ = first_ && rows.RecordCount() == 0;
}

void StreamedAnswer::PartOfAnswer(Recordset& rows) {
  CountRows(rows);
  if (!rows_text_) {
    // The part goes when this returns; its fields stay.
    rows_text_.emplace(format_, std::make_shared<Recordset>(rows.fields()), columns_);
    head_.headers.emplace_back("Content-Type", std::string(MediaType(format_)));
    exchange_.Begin(std::exchange(head_, {}));
    rows_text_->AppendHead(text_);
  }
  AppendRows(rows);
  exchange_.Write(text_);
  text_.clear();
}

void StreamedAnswer::Finish(const Variant& result, const Beside& beside) {
  const RecordsetPtr rows = result.ToRecordset();
  if (rows) CountRows(*rows);
  if (!rows_text_ || !rows) {
    head_.headers.emplace_back("Content-Type", std::string(MediaType(format_)));
    head_.body = AnswerText(format_, columns_, result, beside);
    exchange_.Answer(std::move(head_));
    return;
  }
  AppendRows(*rows);
  rows_text_->AppendTail(text_, beside);
  exchange_.Write(text_);
  exchange_.End();
}

}  // namespace tessarlorn::http
