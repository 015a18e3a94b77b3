// What every operation sends to the database, to the blank: blanks at line ends and comments are part of it, and an
// editor or a formatter would take them out unseen.
#include <algorithm>
#include <array>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "automation/operation_arguments.h"
#include "platform/text/text.h"

namespace tessarlorn {
namespace {

std::string dsn;

/// Values that lead an operation through its statements.
Variant Sample(std::string_view name, ValueType type, Standing stands) {
  if (name == "AdvancedFilter") return {};
  if (name == "sFKey") return "1014301_FStockID";
  if (name == "PrintID") return 10143012;
  if (name == "FPickingGoodsstatus") return 1;
  if (name == "FEMSStatus") return 3;
  if (name == "FID" && (stands == Standing::kKeyList || stands == Standing::kBareNumber)) return "12";
  if (name == "sFID" || name == "strFids" || name == "strIDs") return "12,15";
  if (type == ValueType::kBoolean) return true;
  if (type == ValueType::kLong || type == ValueType::kInteger || type == ValueType::kDouble) return 71;
  if (type == ValueType::kDate) return "2024-05-06";
  return std::string("<").append(name).append(">");
}

/// What the texts of the samples say is the same with their quotes doubled.
class StatementsTest : public RecordingTest, public testing::WithParamInterface<const char*> {
 protected:
  StatementsTest() {
    dsn = std::string(kDsn) + GetParam();
    SessionFactory::ForThisThread(host_).NewSession()->OpenSession(dsn);
  }
};

void InvokeWithSamples(Host& host, const Operation& operation) {
  std::vector<Variant> arguments = SampleArguments(operation, dsn, Sample);
  ServiceObject(host, operation.service).Invoke(operation, arguments);
}

/// A key whose value leads an operation another way.
struct OtherWay {
  std::string_view operation;
  std::string_view key;
  Variant value;
};
const OtherWay kOtherWays[] = {{"GetPrintRecordsetForPick", "Mode", 1},
                               {"GetOrderInfoByLogisticsOrder", "FLogisticsOrder", "1002"}};

void InvokeTheOtherWay(Host& host, const Operation& operation, const OtherWay& other) {
  std::vector<Variant> arguments =
      SampleArguments(operation, dsn, [&](std::string_view name, ValueType type, Standing stands) {
        return name == other.key ? other.value : Sample(name, type, stands);
      });
  ServiceObject(host, operation.service).Invoke(operation, arguments);
}

TEST_P(StatementsTest, AreSentToTheBlank) {
  std::ostringstream sent;
  for (const Operation* operation : Operations()) {
    if (operation->property) continue;
    TheRecording().events.clear();
    TheRecording().answer = AnswerOneRow;
    sent << "== " << operation->name << "\n";
    try {
      InvokeWithSamples(host_, *operation);
      for (const OtherWay& other : kOtherWays) {
        if (other.operation == operation->name) InvokeTheOtherWay(host_, *operation, other);
      }
    } catch (const Error& error) {
      sent << "raised " << error.number() << "\n";
    }
    for (const std::string& event : Events()) sent << ReplaceAll(event, "\r\n", "|\n") << "\n";
  }
  constexpr const char* kExpected = TESSARLORN_SOURCE_ROOT "/tests/automation/statements.txt";
  std::ifstream file(kExpected);
  std::ostringstream expected;
  expected << file.rdbuf();
  const std::string received = ReplaceAll(sent.str(), GetParam(), "");
  if (received == expected.str()) return;
  const std::string actual = testing::TempDir() + "statements.txt";
  std::ofstream(actual) << received;
  FAIL() << "The statements differ: see diff " << kExpected << " " << actual
         << "; where they are meant to, copy the second over the first.";
}

TEST_P(StatementsTest, ThatAnswerNoRowsRaise3704WhereRowsAreRead) {
  int raised = 0;
  for (const Operation* operation : Operations()) {
    if (operation->property) continue;
    // One batch after the other of the operation stays without rows.
    for (std::size_t silent = 0, sent = 1; silent < sent; ++silent) {
      sent = 0;
      TheRecording().answer = [&](std::string_view text) { return sent++ == silent ? nullptr : AnswerOneRow(text); };
      try {
        InvokeWithSamples(host_, *operation);
      } catch (const Error& error) {
        EXPECT_EQ(error.number(), error_number::kObjectClosed) << operation->name << ", batch " << silent;
        ++raised;
      }
    }
  }
  EXPECT_GT(raised, 20);
}

INSTANTIATE_TEST_SUITE_P(Escape, StatementsTest, testing::Values("", ";Escape=Yes"));

/// One way to a value: an argument, a key of a Dictionary, or a key of the Dictionaries in a Vector.
struct Place {
  std::string argument, key, item_key;
  ValueType type;
  Standing stands;
};

std::vector<Place> PlacesOf(const Operation& operation) {
  std::vector<Place> places;
  for (const Argument& argument : operation.arguments()) {
    const std::string name(argument.name);
    if (argument.keys.empty() && !argument.any_key && !argument.is_connection) {
      places.push_back({name, "", "", argument.type, argument.stands});
    }
    for (const Key& key : argument.keys) {
      if (key.is_connection()) continue;
      for (const Key& item : key.item_keys) {
        places.push_back({name, std::string(key.name), std::string(item.name), item.type, item.stands});
      }
      if (key.item_keys.empty()) places.push_back({name, std::string(key.name), "", key.type, key.stands});
    }
  }
  return places;
}

constexpr std::string_view kNothing;
constexpr std::string_view kAll = "*";

/// What the operation sends with `value` in that place; "raised 13" when it refuses it.
/// @param without kNothing: all other places have their samples; kAll: all that it can do without is left out; else
/// the name of an argument or key that is
std::string SentWith(Host& host, const Operation& operation, const Place& place, const Variant& value,
                     std::string_view without) {
  const bool alone = without == kAll;
  std::vector<Variant> arguments = SampleArguments(operation, dsn, Sample);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Argument& argument = operation.arguments()[i];
    const bool left_out =
        (alone && argument.keys.empty() && !argument.is_connection && argument.need == Need::kOptional) ||
        argument.name == without;
    if (left_out) arguments[i] = Variant();
    const auto vector = arguments[i].ToVector();
    auto holder = vector ? vector->At(1).ToDictionary() : arguments[i].ToDictionary();
    for (const Key& key : argument.keys) {
      if ((alone || key.name == without) && key.need == Need::kOptional) holder->Remove(key.name);
      if (alone && key.type == ValueType::kBoolean && key.need == Need::kGiven) holder->SetValue(key.name, false);
    }
    if (argument.name != place.argument) continue;
    if (place.key.empty()) {
      arguments[i] = value;
      continue;
    }
    if (!place.item_key.empty()) holder = holder->GetValue(place.key).ToVector()->At(1).ToDictionary();
    holder->SetValue(place.item_key.empty() ? place.key : place.item_key, value);
  }
  TheRecording().events.clear();
  TheRecording().answer = AnswerOneRow;
  std::string sent;
  try {
    ServiceObject(host, operation.service).Invoke(operation, arguments);
  } catch (const Error& error) {
    if (error.number() == error_number::kTypeMismatch) return "raised 13";
  }
  for (const std::string& event : TheRecording().events) {
    // What goes to the operation log is no statement.
    if (!event.starts_with("Write") && !event.starts_with("IsLogEnable")) sent += event + "\n";
  }
  return sent;
}

bool IsBetweenQuotes(std::string_view sent, std::string_view mark) {
  const std::string_view before = sent.substr(0, sent.find(mark));
  return std::count(before.begin(), before.end(), '\'') % 2 == 1;
}

/// How a value is found in the statements, from the safest way to the one that needs most care. All bare ones look
/// alike.
enum class Way : std::uint8_t { kNowhere, kNumber, kStripped, kQuoted, kBare };

Way Found(Host& host, const Operation& operation, const Place& place, std::string_view without) {
  const bool number_only = place.type == ValueType::kLong && place.key.empty();
  const std::string sent = number_only ? "" : SentWith(host, operation, place, "mq'z_mq'z", without);
  if (sent.find("mq'z") != std::string::npos) return Way::kBare;
  if (sent.find("mq''z") != std::string::npos) return IsBetweenQuotes(sent, "mq''z") ? Way::kQuoted : Way::kBare;
  if (sent.find("mqz") != std::string::npos) return IsBetweenQuotes(sent, "mqz") ? Way::kStripped : Way::kBare;
  // Some take small numbers only.
  const std::string number = place.key == "FEMSStatus" ? "4" : place.key == "FParcelQuantity" ? "298" : "987654";
  const std::string with_number = SentWith(host, operation, place, Variant(number).ToInt32(), without);
  return with_number.find(number) == std::string::npos ? Way::kNowhere : Way::kNumber;
}

Way Expected(Standing stands) {
  constexpr std::array kWays = {Way::kNowhere, Way::kQuoted, Way::kStripped, Way::kNumber,
                                Way::kBare,    Way::kBare,   Way::kBare,     Way::kBare};
  return kWays[static_cast<std::size_t>(stands)];
}

TEST_F(RecordingTest, EveryValueStandsInTheStatementsAsItsContractSays) {
  for (const Operation* operation : Operations()) {
    if (operation->property) continue;
    for (const Place& place : PlacesOf(*operation)) {
      // Quotes are taken out of a text only where they are not doubled.
      dsn = std::string(kDsn) + (place.stands == Standing::kStripped ? "" : ";Escape=Yes");
      Way found = std::max(Found(host_, *operation, place, kNothing), Found(host_, *operation, place, kAll));
      for (const Argument& other : operation->arguments()) {
        if (other.need == Need::kOptional && !other.is_connection && other.name != place.argument) {
          found = std::max(found, Found(host_, *operation, place, other.name));
        }
        for (const Key& key : other.keys) {
          if (key.need != Need::kOptional || key.name == place.key) continue;
          found = std::max(found, Found(host_, *operation, place, key.name));
        }
      }
      EXPECT_EQ(found, Expected(place.stands))
          << operation->name << " " << place.argument << " " << place.key << " " << place.item_key;
    }
  }
}

}  // namespace
}  // namespace tessarlorn
