// Tests on the real tables, empty at first: rows go in, operations run, rows are looked at.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/sample_database.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {

/// The cells of all rows, each with "|" behind it; "null" for a null.
inline std::string Cells(Connection& connection, std::string_view query) {
  const RecordsetPtr rows = connection.Execute(query);
  std::string text;
  for (; !rows->eof(); rows->MoveNext()) {
    for (std::size_t field = 0; field < rows->fields().size(); ++field) {
      text += (rows->IsNull(field) ? "null" : rows->Get(field).ToText()) + "|";
    }
  }
  return text;
}

/// An answer as text: "key=value " for each entry of a Dictionary, a Vector in brackets, "value " for each cell of a
/// row, "| " behind each row of a Recordset and item of a Vector.
inline std::string Told(const Variant& answer) {
  std::string text;
  if (const RecordsetPtr rows = answer.ToRecordset()) {
    for (; !rows->eof(); rows->MoveNext(), text += "| ") {
      for (std::size_t i = 0; i < rows->fields().size(); ++i) text += rows->Get(i).ToText() + " ";
    }
  } else if (const std::shared_ptr<Vector> items = answer.ToVector()) {
    for (const Variant& item : *items) text += Told(item) + "| ";
  } else if (const std::shared_ptr<Dictionary> entries = answer.ToDictionary()) {
    for (const auto& [key, value] : *entries) {
      text += key + "=" + (value.ToVector() ? "[" + Told(value) + "]" : value.ToText()) + " ";
    }
  } else {
    text = answer.type_name() == "Nothing" ? "Nothing" : answer.ToText();
  }
  return text;
}

template <typename Value>
std::string Told(const std::optional<Value>& answer) {
  return answer ? Told(Variant(*answer)) : "Nothing";
}

/// Some cells of each row in the same way.
inline std::string Told(const RecordsetPtr& rows, const std::vector<std::string_view>& fields) {
  std::string text;
  for (; !rows->eof(); rows->MoveNext(), text += "| ") {
    for (const std::string_view field : fields) text += rows->Get(field).ToText() + " ";
  }
  return text;
}

/// A Dictionary that operations take where it is made.
struct Parameters : Dictionary {
  using Dictionary::Dictionary;
  operator const Dictionary*() const noexcept { return this; }
};

/// The texts that `action` sends to the database.
template <typename Action>
std::vector<std::string> StatementsOf(const Action& action) {
  struct Observing {
    Observing() {
      TestHost().ObserveStatements([this](std::string_view text) { texts.emplace_back(text); });
    }
    Observing(const Observing&) = delete;
    Observing& operator=(const Observing&) = delete;
    ~Observing() { TestHost().ObserveStatements({}); }
    std::vector<std::string> texts;
  } observing;
  action();
  return std::move(observing.texts);
}

/// The user is 7 at 10.0.0.5, the clock stands at 2024-05-06 07:08:09.
class SampleTest : public testing::Test {
 protected:
  SampleTest() {
    host_.SetClock([] { return DateTime::Parse("2024-05-06 07:08:09").value(); });
  }
  ~SampleTest() override {
    host_.SetClock({});
    save_ = nullptr;
    get_ = nullptr;
    host_.CloseIdle();
  }

  void Run(std::string_view batch) { database_.connection().Execute(batch); }
  std::string Read(std::string_view query) { return Cells(database_.connection(), query); }
  /// A parameter Dictionary with sDSN, FID and more.
  [[nodiscard]] Parameters Keys(std::string_view orders, const Dictionary& more = {}) const {
    Parameters keys{{"sDSN", dsn_}, {"FID", orders}};
    for (const auto& [key, value] : more) keys.SetValue(key, value);
    return keys;
  }
  [[nodiscard]] clsSaveData& save() { return *save_; }
  [[nodiscard]] clsGetData& get() { return *get_; }

  Host& host_ = TestHost();
  SampleDatabase database_;
  std::string dsn_ = database_.Dsn(7, "Client=10.0.0.5;");

 private:
  std::unique_ptr<clsSaveData> save_ = std::make_unique<clsSaveData>(host_);
  std::unique_ptr<clsGetData> get_ = std::make_unique<clsGetData>(host_);
};

}  // namespace tessarlorn
