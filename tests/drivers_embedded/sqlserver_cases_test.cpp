// What SQL Server answers, case by case: sqlserver_cases.json.
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "drivers_embedded/database_support.h"
#include "platform/decimal.h"

namespace tessarlorn {
namespace {

using nlohmann::json;

const json& Cases() {
  static const json cases = json::parse(std::ifstream(TESSARLORN_TEST_DATA "/sqlserver_cases.json"));
  return cases;
}

/// Equal texts, or numbers that are equal to the shorter one's number of places.
bool Agree(const json& wanted, const Variant& got) {
  if (wanted.is_null() || got.is_null()) return wanted.is_null() && got.is_null();
  const std::string text = got.holds<bool>() ? (got.ToBool() ? "1" : "0") : got.ToText();
  const std::string expected = wanted.get<std::string>();
  if (text == expected) return true;
  const auto a = Decimal::Parse(text);
  const auto b = Decimal::Parse(expected);
  if (!a || !b) return false;
  const int places = std::min(a->scale(), b->scale());
  return a->Rescale(places) == b->Rescale(places);
}

void Compare(const json& batch, const RecordsetPtr& rows) {
  ASSERT_NE(rows, nullptr) << "no result";
  std::vector<std::string> names;
  for (const Field& field : rows->fields()) names.push_back(field.name);
  EXPECT_EQ(names, batch["columns"].get<std::vector<std::string>>());
  ASSERT_EQ(rows->RecordCount(), batch["rows"].size());
  for (const json& row : batch["rows"]) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      EXPECT_TRUE(Agree(row[i], rows->Get(i))) << names[i] << " is " << TextOf(rows) << ", wanted " << row.dump();
    }
    rows->MoveNext();
  }
}

class SqlServerCase : public testing::TestWithParam<std::size_t> {};

TEST_P(SqlServerCase, AnswersAlike) {
  const json& one = Cases()[GetParam()];
  SCOPED_TRACE(one["name"].get<std::string>());
  const auto connection = OpenEmbedded();
  for (const json& batch : one["batches"]) {
    const std::string sql = batch["sql"].get<std::string>();
    SCOPED_TRACE(sql);
    RecordsetPtr rows;
    int number = 0;
    try {
      rows = connection->Execute(sql);
    } catch (const Error& error) {
      number = error.native().number;
      EXPECT_TRUE(batch.contains("error")) << number << ": " << error.description();
    }
    if (batch.contains("error")) {
      const auto numbers = batch["error"].get<std::vector<int>>();
      EXPECT_NE(std::find(numbers.begin(), numbers.end(), number), numbers.end()) << "raised " << number;
    } else if (batch.contains("columns") && number == 0) {
      Compare(batch, rows);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, SqlServerCase, testing::Range<std::size_t>(0, Cases().size()));

}  // namespace
}  // namespace tessarlorn
