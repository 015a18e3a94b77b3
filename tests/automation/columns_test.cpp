#include <gtest/gtest.h>
#include <utility>

#include "automation/operation_arguments.h"
#include "support/batches.h"
#include "support/sample_database.h"

namespace tessarlorn {
namespace {

/// Names with types.
using Columns = std::vector<std::pair<std::string, std::string>>;

Columns Told(std::span<const Column> columns, const std::string& owner = "") {
  Columns told;
  for (const Column& column : columns) {
    told.emplace_back(owner + std::string(column.name), TypeName(column.type));
    for (auto& item : Told(column.item_columns, owner + std::string(column.name) + ".")) told.push_back(item);
  }
  return told;
}

/// A column has the type of its first value that is not Null.
void Note(Columns& columns, const std::string& name, const Variant& value) {
  const auto at =
      std::find_if(columns.begin(), columns.end(), [&](const auto& column) { return column.first == name; });
  if (at == columns.end()) {
    columns.emplace_back(name, value.type_name());
  } else if (at->second == "Null") {
    at->second = value.type_name();
  }
}

void NoteAll(Columns& columns, const Variant& answer, const std::string& owner = "") {
  if (const RecordsetPtr rows = answer.ToRecordset()) {
    for (; !rows->eof(); rows->MoveNext()) {
      for (std::size_t i = 0; i < rows->fields().size(); ++i) Note(columns, rows->fields()[i].name, rows->Get(i));
    }
  } else if (const std::shared_ptr<Vector> items = answer.ToVector()) {
    for (std::size_t i = 1; i <= items->size(); ++i) NoteAll(columns, items->At(i), owner);
  } else {
    for (const auto& [name, value] : *answer.ToDictionary()) {
      Note(columns, owner + name, value);
      if (value.ToVector()) NoteAll(columns, value, owner + name + ".");
    }
  }
}

TEST(ColumnsTest, OfEveryAnswerAreThoseOfTheContract) {
  constexpr int kOrderCount = 50;
  SampleDatabase database(kOrderCount, 5);
  database.connection().Execute("UPDATE IC_Web2ERPOrders SET FInvoiceStatus = 1, FInnerInvoice = 0 WHERE FID = 1");
  const auto sample = [&](std::string_view name, auto, Standing stands) {
    if (name == "FWebShopID") return Variant(101);
    if (name == "FLogisticsID") return Variant(301);
    if (name == "FLogisticsOrder")
      return database.connection().Execute("SELECT MAX(FUniqueCode) FROM IC_Web2ERPOrders")->Get(std::size_t{0});
    if (name == "Mode") return Variant(0);
    return stands == Standing::kKeyList ? Variant(KeysTo(kOrderCount)) : Variant(1);
  };
  for (const Operation* const operation : Operations()) {
    const std::span<const Column> columns = operation->contract->columns;
    if (columns.empty()) continue;
    std::vector<Variant> arguments = SampleArguments(*operation, database.Dsn(), sample);
    Columns answered;
    NoteAll(answered, ServiceObject(TestHost(), operation->service).Invoke(*operation, arguments));
    EXPECT_EQ(answered, Told(columns)) << operation->name;
  }
}

}  // namespace
}  // namespace tessarlorn
