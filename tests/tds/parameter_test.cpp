#include "hosts/tds/messages/parameter.h"

#include <gtest/gtest.h>
#include <memory>

#include "hosts/tds/messages/login.h"
#include "hosts/tds/messages/type_codes.h"
#include "support/error_of.h"
#include "support/sample_database.h"
#include "tsql/database_support.h"

namespace tessarlorn::tds {
namespace {

using Bytes = std::string;

Bytes Hex(std::string_view digits) {
  Bytes bytes;
  int high = -1;
  for (const char digit : digits) {
    if (digit == ' ') continue;
    const int value = digit <= '9' ? digit - '0' : digit - 'A' + 10;
    if (high >= 0) bytes += static_cast<char>(high * 16 + value);
    high = high >= 0 ? -1 : value;
  }
  return bytes;
}

/// A parameter named @p: its type and value as bytes.
Bytes Named(const Bytes& type_and_value) { return Hex("02 4000 7000 00") + type_and_value; }

SqlParameter Read(const Bytes& type_and_value) {
  const Bytes bytes = Named(type_and_value);
  TdsReader reader(bytes);
  SqlParameter parameter = ReadParameter(reader);
  EXPECT_TRUE(reader.at_end());
  return parameter;
}

const Bytes kUtf8(CollationFor(TdsVersion()));
const Bytes kLatin = Hex("0904D00034");

struct Case {
  Bytes bytes;
  std::string type;
  /// As Shown tells it.
  std::string value;
};

std::vector<Case> Cases() {
  return {
      {Hex("26 04 04 D6FFFFFF"), "int", "-42"},
      {Hex("26 08 08 0000000000000080"), "bigint", "-9223372036854775808"},
      {Hex("26 01 01 FF"), "tinyint", "255"},
      {Hex("34 FEFF"), "smallint", "-2"},
      {Hex("26 04 00"), "int", "NULL"},
      {Hex("1F"), "nvarchar(1)", "NULL"},
      {Hex("68 01 01 01"), "bit", "True"},
      {Hex("6D 08 08 9A9999999999B93F"), "float", "0.1"},
      {Hex("6D 04 04 00002040"), "real", "2.5"},
      {Hex("6A 11 26 0A 11 00 FFFFFFFF3F228A097AC4865AA84C3B4B"), "decimal(38,10)",
       "-9999999999999999999999999999.9999999999"},
      {Hex("6A 05 09 02 05 01 7B000000"), "decimal(9,2)", "1.23"},
      {Hex("6A 0A 14 03 0A 01 D5071FEB8CA954AB00"), "decimal(20,3)", "12345678901234567.125"},
      {Hex("6E 08 08 FFFFFFFF F0D8FFFF"), "money", "-1.0000"},
      {Hex("6E 04 04 10270000"), "money", "1.0000"},
      {Hex("28 03 80460B"), "date", "2024-02-29 00:00:00.000"},
      {Hex("29 07 05 507CFD7669"), "time", "1900-01-01 12:34:56.789"},
      {Hex("2A 03 07 952CB302 80460B"), "datetime2", "2024-02-29 12:34:56.789"},
      {Hex("2B 07 0A 507CFD7669 80460B E001"), "datetimeoffset", "2024-02-29 20:34:56.789 +08:00"},
      {Hex("6F 08 08 25B10000 2D5ACF00"), "datetime", "2024-02-29 12:34:56.790"},
      {Hex("6F 04 04 25B1 F202"), "datetime", "2024-02-29 12:34:00.000"},
      {Hex("24 10 10 FF19966F868B11D0B42D00C04FC964FF"), "uniqueidentifier", "6F9619FF-8B86-D011-B42D-00C04FC964FF"},
      {Hex("A5 0A00 0300 0001FF"), "varbinary(10)", "0x0001FF"},
      {Hex("E7 1400") + kUtf8 + Hex("0600 6900 2700 7300"), "nvarchar(10)", "i's"},
      {Hex("E7 FFFF") + kUtf8 + Hex("FEFFFFFFFFFFFFFF 04000000 2D4E3DD8 02000000 00DE 00000000"), "nvarchar(max)",
       "中😀"},
      {Hex("E7 FFFF") + kUtf8 + Hex("FFFFFFFFFFFFFFFF"), "nvarchar(max)", "NULL"},
      {Hex("A7 0A00") + kUtf8 + Hex("0300 E4B8AD"), "varchar(10)", "中"},
      {Hex("A7 0A00") + kLatin + Hex("0200 E980"), "varchar(10)", "é€"},
      {Hex("A7 0A00") + kUtf8 + Hex("0000"), "varchar(10)", ""},
  };
}

TEST(Parameter, ComesWithTypeAndValueAndBackFromTheDatabase) {
  SampleDatabase database;
  for (const Case& item : Cases()) {
    SqlParameter parameter = Read(item.bytes);
    EXPECT_EQ(parameter.name, "@p");
    EXPECT_EQ(parameter.type, item.type);
    EXPECT_EQ(Shown(parameter.value), item.value) << item.type;
    parameter.is_output = true;
    database.connection().Execute({"set @p = @p", {&parameter, 1}});
    // Only these are texts, which come with all the places of their type.
    if (item.type == "datetimeoffset") continue;
    EXPECT_EQ(Shown(parameter.value), item.value) << item.type << " back";
  }
}

TEST(Parameter, NoCutValueIsRead) {
  for (const Case& item : Cases()) {
    const Bytes whole = Named(item.bytes);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      const Bytes cut = whole.substr(0, size);
      TdsReader reader(cut);
      EXPECT_THROW(ReadParameter(reader), ProtocolError) << item.type << " cut to " << size;
    }
  }
}

TEST(Parameter, RefusesWhatCannotBe) {
  for (const char* digits :
       {"26 04 03 D6FFFF", "6A 05 27 00 00", "6A 05 09 0A 00", "6A 12 26 00 12 01 0000000000000000000000000000000000",
        "29 08 00", "E7 1400 0408D02400 0100 69", "77"}) {
    EXPECT_THROW(Read(Hex(digits)), ProtocolError) << digits;
  }
  for (const char* digits : {"6A 11 26 00 11 01 FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF", "6D 08 08 000000000000F07F",
                             "28 03 FFFFFF", "29 07 05 FFFFFFFFFF", "6F 08 08 00000000 FFFFFFFF"}) {
    EXPECT_EQ(ErrorOf([digits] { Read(Hex(digits)); }).native().number, 8023) << digits;
  }
  for (const char* digits : {"62 00000000", "F1 00", "F3 00"}) EXPECT_THROW(Read(Hex(digits)), Error) << digits;
}

}  // namespace
}  // namespace tessarlorn::tds
