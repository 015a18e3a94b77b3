// The cases of tsql/sqlserver_cases.json, what SQL Server answers to batches, run on any connection.
#pragma once

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/error_of.h"
#include "tessarlorn/decimal.h"
#include "tsql/database_support.h"

namespace tessarlorn {

inline const nlohmann::json& SqlServerCases() {
  static const nlohmann::json cases =
      nlohmann::json::parse(std::ifstream(TESSARLORN_SOURCE_ROOT "/tests/tsql/sqlserver_cases.json"));
  return cases;
}

/// Equal texts, or numbers that are equal to the shorter one's number of places.
inline bool AgreesWith(const nlohmann::json& wanted, const Variant& got) {
  if (wanted.is_null() || got.is_null()) return wanted.is_null() && got.is_null();
  const std::string text = CellText(got);
  const std::string expected = wanted.get<std::string>();
  if (text == expected) return true;
  const auto a = Decimal::Parse(text);
  const auto b = Decimal::Parse(expected);
  if (!a || !b) return false;
  const int places = std::min(a->scale(), b->scale());
  return a->Rescale(places) == b->Rescale(places);
}

/// Up to the first cell that differs.
inline void ExpectRows(const nlohmann::json& batch, const RecordsetPtr& rows) {
  ASSERT_NE(rows, nullptr) << "no result";
  std::vector<std::string> names;
  for (const Field& field : rows->fields()) names.push_back(field.name);
  ASSERT_EQ(names, batch["columns"].get<std::vector<std::string>>());
  ASSERT_EQ(rows->RecordCount(), batch["rows"].size());
  int number = 0;
  for (const nlohmann::json& row : batch["rows"]) {
    ++number;
    for (std::size_t i = 0; i < row.size(); ++i) {
      ASSERT_TRUE(AgreesWith(row[i], rows->Get(i)))
          << names[i] << " of row " << number << " is " << CellText(rows->Get(i)) << ", wanted " << row[i].dump();
    }
    rows->MoveNext();
  }
}

/// Runs the batches of a case on an empty database and compares what they answer or raise.
inline void RunSqlServerCase(const nlohmann::json& one, Connection& connection) {
  SCOPED_TRACE(one["name"].get<std::string>());
  for (const nlohmann::json& batch : one["batches"]) {
    const std::string sql = batch["sql"].get<std::string>();
    SCOPED_TRACE(sql);
    RecordsetPtr rows;
    const Error error = ErrorOf([&] { rows = connection.Execute(sql); });
    const int number = error.native().number;
    EXPECT_TRUE(number == 0 || batch.contains("error")) << number << ": " << error.description();
    if (batch.contains("error")) {
      const auto numbers = batch["error"].get<std::vector<int>>();
      EXPECT_NE(std::find(numbers.begin(), numbers.end(), number), numbers.end()) << "raised " << number;
    } else if (batch.contains("columns") && number == 0) {
      ExpectRows(batch, rows);
    }
  }
}

}  // namespace tessarlorn
