#include "hosts/calls/json_arguments.h"

#include <gmock/gmock.h>

#include "hosts/calls/json_text.h"
#include "hosts/calls/wrong_call.h"

namespace tessarlorn {
namespace {

TEST(JsonArgumentsTest, KeepsEveryDigitOfNumbers) {
  using Case = std::tuple<const char*, const char*, const char*>;
  for (const auto& [json, type, text] : {
           Case{"2147483647", "Long", "2147483647"},
           Case{"-2147483648", "Long", "-2147483648"},
           Case{"2147483648", "Decimal", "2147483648"},
           Case{"18446744073709551615", "Decimal", "18446744073709551615"},
           Case{"1234567890123456789012345678", "Decimal", "1234567890123456789012345678"},
           Case{"-99999999999999999999999999999999999999", "Decimal", "-99999999999999999999999999999999999999"},
           Case{"0.1", "Decimal", "0.1"},
           Case{"1.50", "Decimal", "1.50"},
           Case{"12345678901234567.89", "Decimal", "12345678901234567.89"},
           Case{"1e3", "Long", "1000"},
           Case{"\"1.5\"", "String", "1.5"},
           Case{"true", "Boolean", "True"},
           Case{"null", "Null", ""},
       }) {
    const Variant value = ReadJson(json, "x");
    EXPECT_EQ(value.type_name(), type) << json;
    EXPECT_EQ(value.is_null() ? "" : value.ToText(), text) << json;
  }
}

TEST(JsonArgumentsTest, NestsAndReadsWhatJsonWrites) {
  const std::string text = R"({"a":[1,2.50,{"b":[]},null,"中文\"\n"],"":{"A":true}})";
  EXPECT_EQ(JsonText(ReadJson(text, "x")), text);
}

TEST(JsonArgumentsTest, NamesPlaceAndFault) {
  const std::string deep(65, '[');
  using Case = std::pair<std::string, const char*>;
  for (const auto& [json, fault] : {
           Case{"", "f.json:1:1: syntax error while parsing value - unexpected end of input"},
           Case{"{\"a\":1,\n  \"b\" 2}", "f.json:2:7: syntax error"},
           Case{"{\"中文\": x}", "f.json:1:8: syntax error"},
           Case{"[1,2] 3", "f.json:1:7: syntax error"},
           Case{"{\"a\":1,\n \"b\":[\"a\"],  \"a\":2}", "f.json:2:14: the key \"a\" stands twice in its object"},
           Case{"{\"a\\\"\":1,\"a\\\"\":1}", "f.json:1:10: the key \"a\"\" stands twice"},
           Case{"[1, 123456789012345678901234567890123456789]", "f.json:1:5: the number 1234567890"},
           Case{"[1e400]", "f.json:1:6: number overflow parsing '1e400'"},
           Case{deep, "f.json:1:65: more than 64 levels of objects and arrays"},
       }) {
    EXPECT_THAT([json = json] { ReadJson(json, "f.json"); },
                testing::ThrowsMessage<WrongCall>(testing::StartsWith(fault)));
  }
  EXPECT_TRUE(ReadJson(std::string(64, '[') + std::string(64, ']'), "x").ToVector());
}

}  // namespace
}  // namespace tessarlorn
