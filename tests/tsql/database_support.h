// A fresh embedded database for a test, and its answers as text.
#pragma once

#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/text/text.h"
#include "support/test_host.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/error.h"

namespace tessarlorn {

inline std::unique_ptr<Connection> OpenEmbedded(const std::string& database = ":memory:") {
  // A name of its own for each database in memory: others of this process may still be open.
  static int number = 0;
  return OpenConnection("Embedded=" + (database == ":memory:" ? database + std::to_string(++number) : database));
}

inline std::string CellText(const Variant& value) {
  if (const auto* bytes = value.get_if<Bytes>()) return "0x" + HexText(bytes->data(), bytes->size());
  return value.is_null() ? "NULL" : value.holds<bool>() ? (value.ToBool() ? "1" : "0") : value.ToText();
}

/// A value as its type keeps it.
inline std::string Shown(const Variant& value) {
  if (const auto* date = value.get_if<DateTime>()) return date->ToString(true);
  return value.holds<bool>() ? value.ToText() : CellText(value);
}

/// "a|b;1|x;2|NULL": heads and rows.
inline std::string TextOf(const RecordsetPtr& rows) {
  if (rows == nullptr) return "";
  std::string text;
  for (std::size_t i = 0; i < rows->fields().size(); ++i) text += (i == 0 ? "" : "|") + rows->fields()[i].name;
  for (rows->MoveFirst(); !rows->eof(); rows->MoveNext()) {
    for (std::size_t i = 0; i < rows->fields().size(); ++i) {
      text += i == 0 ? ";" : "|";
      text += CellText(rows->Get(i));
    }
  }
  return text;
}

/// The first result as text, or "error 208: …".
inline std::string Answer(Connection& connection, std::string_view batch) {
  try {
    return TextOf(connection.Execute(batch));
  } catch (const Error& error) {
    return "error " + std::to_string(error.native().number) + ": " + error.description();
  }
}

struct AnsweredBatch {
  const char* batch;
  const char* answer;
};

/// Each batch has its answer, one after the other in a database in which `prepared` ran.
inline void CheckBatches(std::initializer_list<const char*> prepared, std::initializer_list<AnsweredBatch> cases) {
  const auto connection = OpenEmbedded();
  for (const char* batch : prepared) ASSERT_EQ(Answer(*connection, batch), "");
  for (const AnsweredBatch& row : cases) EXPECT_EQ(Answer(*connection, row.batch), row.answer) << row.batch;
}

}  // namespace tessarlorn
