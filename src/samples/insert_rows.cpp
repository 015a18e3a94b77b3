#include "samples/insert_rows.h"

#include "platform/decimal.h"
#include "platform/text.h"

namespace tessarlorn::cli {

void InsertRows::BeginRow() {
  if (rows_ == 0) {
    text_.append("INSERT INTO ").append(table_).append(" (").append(columns_).append(") VALUES\n(");
  } else {
    text_ += ",\n(";
  }
  first_value_ = true;
}

void InsertRows::EndRow() {
  text_ += ')';
  if (++rows_ == kRows) Flush();
}

void InsertRows::Flush() {
  if (rows_ == 0) return;
  connection_.Execute(text_);
  text_.clear();
  rows_ = 0;
}

void InsertRows::AppendPlain(std::string_view text) {
  if (!first_value_) text_ += ',';
  first_value_ = false;
  text_ += text;
}

void InsertRows::AppendValue(std::string_view value) {
  AppendPlain("N'");
  if (value.find('\'') == std::string_view::npos) {
    text_ += value;
  } else {
    text_ += ReplaceAll(value, "'", "''");
  }
  text_ += '\'';
}

void InsertRows::AppendValue(const Fixed& value) {
  AppendPlain("'");
  text_.append(Decimal::FromScaled(value.value, value.scale).ToString()).append("'");
}

void InsertRows::AppendValue(DateTime value) {
  // With a T between date and time no language setting turns month and day round.
  std::string text = value.ToString();
  text[10] = 'T';
  AppendPlain("'");
  text_.append(text).append("'");
}

void FillIfEmpty(Connection& connection, std::string_view table, std::string columns,
                 const std::function<void(InsertRows&)>& write) {
  if (connection.Execute("SELECT TOP 1 1 AS FFilled FROM " + std::string(table))->RecordCount() > 0) return;
  InsertRows rows(connection, table, std::move(columns));
  write(rows);
  rows.Flush();
}

}  // namespace tessarlorn::cli
