// A database that runs nothing: it records what is sent to it, in one list with the calls of recording siblings.
#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/driver.h"
#include "platform/recordset_builder.h"
#include "support/error_of.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/collections.h"
#include "tessarlorn/error.h"
#include "tessarlorn/host.h"
#include "tessarlorn/session.h"

namespace tessarlorn {

/// What was recorded, and what is answered.
struct Recording {
  /// "open", the text of each batch, "Method(argument,…)" of each call of a sibling.
  std::vector<std::string> events;
  /// Answers a batch; by default an empty recordset without fields.
  std::function<RecordsetPtr(std::string_view text)> answer;
  bool log_enabled = true;
  std::int32_t user = 16394;

  /// The events that are batches.
  [[nodiscard]] std::vector<std::string> Batches() const {
    std::vector<std::string> batches;
    for (const std::string& event : events) {
      if (event.ends_with("\r\n")) batches.push_back(event);
    }
    return batches;
  }
};

inline Recording& TheRecording() {
  static Recording recording;
  return recording;
}

/// A recordset of text fields.
inline RecordsetPtr TextRows(const std::vector<std::string>& names, const std::vector<std::vector<const char*>>& rows) {
  std::vector<Field> fields;
  fields.reserve(names.size());
  for (const std::string& name : names) fields.push_back({.name = name});
  RecordsetBuilder result(fields);
  for (const auto& row : rows) {
    result.BeginRow();
    for (const char* cell : row) cell == nullptr ? result.AppendNull() : result.AppendText(cell);
  }
  return result.Finish();
}

class RecordingConnection : public Connection {
 public:
  void BeginTransaction() override {}
  void CommitTransaction() override {}
  void RollbackTransaction() override {}
  bool Reset() noexcept override { return true; }
  [[nodiscard]] bool usable() const noexcept override { return true; }
  void Cancel() noexcept override {}

 protected:
  void Run(SqlCommand& command, bool, BatchSink& sink) override {
    const std::string_view text = command.text;
    std::string event(text);
    for (const SqlParameter& parameter : command.parameters) {
      event += " " + parameter.name + "=" + (parameter.value.is_null() ? "NULL" : parameter.value.ToText());
    }
    TheRecording().events.push_back(event);
    sink.Rows(TheRecording().answer ? TheRecording().answer(text) : TextRows({}, {}));
  }
};

/// Opens strings that have the key "Recording".
class RecordingDriver : public Driver {
 public:
  [[nodiscard]] std::vector<std::string> Keys() const override { return {"Recording"}; }
  [[nodiscard]] std::unique_ptr<Connection> Open(std::string_view) override {
    TheRecording().events.emplace_back("open");
    return std::make_unique<RecordingConnection>();
  }
};

/// Stands for both siblings. The user's id is asked for too often to be worth a record.
class RecordingSibling : public Object {
 public:
  Variant Call(std::string_view method, std::span<const Variant> arguments) override {
    if (method == "GetCurrentUserID") return TheRecording().user;
    std::string event = std::string(method) + "(";
    for (const Variant& argument : arguments) event += (&argument == arguments.data() ? "" : ",") + Text(argument);
    TheRecording().events.push_back(event + ")");
    return method == "IsLogEnable" ? TheRecording().log_enabled : true;
  }

 private:
  static std::string Text(const Variant& value) {
    const std::shared_ptr<Dictionary> dictionary = value.ToDictionary();
    if (!dictionary) return value.ToText();
    std::string text = "{";
    for (const auto& [key, entry] : *dictionary) text += (text.size() > 1 ? "," : "") + key + "=" + entry.ToText();
    return text + "}";
  }
};

/// A connection string of the recording database.
inline constexpr const char* kDsn = "Connect=Recording=a;User=16394;Client=10.0.0.5";

/// A test on the recording database, with the clock at 2024-05-06 07:08:09 and one connection open already.
class RecordingTest : public testing::Test {
 protected:
  RecordingTest() {
    host_.AddDriver(std::make_shared<RecordingDriver>());
    for (const char* name : {"TessarMWebOrder.TessarMWebOrderUpdate", "QuorBase.SecurityInfo"}) {
      host_.AddObject(name, [] { return std::make_shared<RecordingSibling>(); });
    }
    host_.SetClock([] { return DateTime::Parse("2024-05-06 07:08:09").value(); });
    SessionFactory::ForThisThread(host_).NewSession()->OpenSession(kDsn);
    TheRecording() = {};
  }

  static std::vector<std::string>& Events() { return TheRecording().events; }
  /// The batch that was sent, when it was the only event.
  static std::string OnlyEvent() {
    EXPECT_EQ(Events().size(), 1U);
    return Events().empty() ? std::string() : Events().front();
  }

  Host host_;
  clsSaveData save_{host_};
  clsGetData get_{host_};
};

/// Lines with CR LF behind each.
inline std::string Lines(const std::vector<std::string_view>& lines) {
  std::string text;
  for (const std::string_view line : lines) text.append(line).append("\r\n");
  return text;
}

/// Number and Source of the Error that `action` raises: "-2147217900 Delivery"; "none" when it raises none.
template <typename Action>
std::string Raised(const Action& action) {
  const Error error = ErrorOf(action);
  return error.number() == 0 ? "none" : std::to_string(error.number()) + " " + error.source();
}

}  // namespace tessarlorn
