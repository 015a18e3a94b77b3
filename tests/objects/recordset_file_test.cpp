#include "hosts/objects/recordset/recordset_file.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

#include "hosts/objects/recordset/rows_for_ado.h"
#include "objects/object_support.h"
#include "platform/recordset_builder.h"
#include "platform/text/text.h"
#include "support/full_disk.h"
#include "support/shell.h"
#include "support/temporary_folder.h"

namespace tessarlorn {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class RecordsetFileTest : public testing::Test {
 protected:
  /// The saved file without the ends of its lines, and what they begin with.
  std::string Saved() { return ReplaceAll(ReplaceAll(ReadFile(path_), "\r\n", ""), "\t", ""); }

  TemporaryFolder folder_;
  std::string path_ = folder_.file("rows.xml");
};

TEST_F(RecordsetFileTest, XmlHasTypesAndValues) {
  const auto rows = Rows();
  Put(*rows, "Filter", {"FID <> 2"});
  Put(*rows, "Sort", {"FID DESC"});
  Call(*rows, "MoveLast");
  Call(*rows, "Save", {path_});
  EXPECT_EQ(Get(*rows, "AbsolutePosition").ToInt32(), 1);
  EXPECT_THAT(
      Saved(),
      AllOf(HasSubstr("<s:AttributeType name='FID' rs:number='1'>"
                      "<s:datatype dt:type='int' dt:maxLength='4' rs:precision='10' rs:fixedlength='true'/>"),
            HasSubstr("<s:AttributeType name='FDate' rs:number='5' rs:nullable='true'>"
                      "<s:datatype dt:type='dateTime' rs:dbtype='timestamp' dt:maxLength='16' rs:scale='3' "
                      "rs:precision='23' rs:fixedlength='true'/></s:AttributeType>"),
            HasSubstr("<s:AttributeType name='c7' rs:name='Remark, own' rs:number='7' rs:nullable='true'>"
                      "<s:datatype dt:type='string' dt:maxLength='1073741823' rs:long='true'/>"),
            HasSubstr(
                "<rs:data><z:row FID='5' FBuyer='O&#x27;Neil 50%' FCost='0.0000' FWeight='3' "
                "FDate='2024-01-02T00:00:00' FPaid='False' c7='' FData='01ab'/>"
                "<z:row FID='4' FCost='-1.0000' FWeight='0.1' FDate='2023-12-31T00:00:00' c7='a&#x9;b' FData='01ab'/>"
                "<z:row FID='3'"),
            testing::EndsWith("</rs:data></xml>")));
  const Variant for_ado = Call(*rows, "AsADO");
  EXPECT_EQ(dynamic_cast<RowsForAdo&>(**for_ado.get_if<std::shared_ptr<Object>>()).xml(), ReadFile(path_));
}

TEST_F(RecordsetFileTest, XmlHoldsOddNamesAndCharacters) {
  const std::vector<std::string> names = {"c2", "c 2", "fid", "FID", "fid", "", "订单", "a'<&>\"b", "1st", "c2_"};
  std::vector<Field> fields;
  for (const std::string& name : names) fields.push_back({.name = name});
  RecordsetBuilder rows(fields);
  rows.BeginRow();
  const std::vector<std::string> values = {"<&>'\"", "\r\n\t", "\x01\x1F\x7F", "\xEF\xBF\xBF", "\xC3(",
                                           "张 😀",   "",       "  ",           "]]>",          "a"};
  for (const std::string& value : values) rows.AppendText(value);
  SaveRecordset(RecordsetView(rows.Finish()), path_, true);
  const std::string saved = Saved();
  for (const char* name : {"name='c2'", "name='c2__' rs:name='c 2'", "name='fid'", "name='FID'",
                           "name='c5' rs:name='fid'", "name='c6' rs:name=''", "name='c7' rs:name='订单'",
                           "name='c8' rs:name='a&#x27;&lt;&amp;&gt;\"b'", "name='c9' rs:name='1st'", "name='c2_'"}) {
    EXPECT_THAT(saved, HasSubstr("<s:AttributeType " + std::string(name) + " rs:number="));
  }
  EXPECT_THAT(saved, HasSubstr("<z:row c2='&lt;&amp;&gt;&#x27;\"' c2__='&#xD;&#xA;&#x9;' fid='??\x7F' FID='?' "
                               "c5='\xEF\xBF\xBD(' c6='张 😀' c7='' c8='  ' c9=']]&gt;' c2_='a'/>"));
}

TEST_F(RecordsetFileTest, XmlKeepsEveryDigitAndMillisecond) {
  RecordsetBuilder rows({{.name = "real", .type = FieldType::kFloat},
                         {.name = "single", .type = FieldType::kReal},
                         {.name = "at", .type = FieldType::kDateTime},
                         {.name = "day", .type = FieldType::kDate},
                         {.name = "hour", .type = FieldType::kTime}});
  rows.BeginRow();
  rows.AppendDouble(0.1 + 0.2);
  rows.AppendDouble(static_cast<double>(1.1F));
  for (int i = 0; i < 3; ++i) rows.AppendDateTime(DateTime::Parse("1899-12-31 23:59:58.997").value());
  SaveRecordset(RecordsetView(rows.Finish()), path_, true);
  EXPECT_THAT(Saved(), HasSubstr("<z:row real='0.30000000000000004' single='1.1' at='1899-12-31T23:59:58.997' "
                                 "day='1899-12-31' hour='23:59:58.997'/>"));
}

TEST_F(RecordsetFileTest, TextIsOneLineARow) {
  const auto rows = Rows();
  Put(*rows, "Filter", {"FID = 4"});
  const std::string path = folder_.file("rows.txt");
  Call(*rows, "Save", {path});
  EXPECT_EQ(ReadFile(path),
            "FID\tFBuyer\tFCost\tFWeight\tFDate\tFPaid\tRemark, own\tFData\r\n"
            "4\t\t-1.0000\t0.1\t2023-12-31 00:00:00\t\ta b\t01ab\r\n");
  Call(*rows, "Save", {folder_.file("订单.TXT"), 1});
  EXPECT_THAT(ReadFile(folder_.file("订单.TXT")), HasSubstr("<z:row FID='4'"));
}

TEST_F(RecordsetFileTest, RefusesWithoutTouchingAnything) {
  const auto rows = Rows();
  std::ofstream(path_) << "kept";
  EXPECT_EQ(Number([&] { Call(*rows, "Save", {path_}); }), 58);
  EXPECT_EQ(ReadFile(path_), "kept");
  EXPECT_EQ(Number([&] { Call(*rows, "Save", {"/dev/full"}); }), 58);
  for (const std::string& path : {folder_.file("none/rows.xml"), std::string(), folder_.file("") + "a\xFF/b"}) {
    EXPECT_EQ(Number([&] { Call(*rows, "Save", {path}); }), 76) << path;
  }
  for (const std::int32_t format : {-1, 2}) {
    EXPECT_EQ(Number([&] { Call(*rows, "Save", {folder_.file("other"), format}); }), 3001) << format;
  }
  EXPECT_FALSE(std::filesystem::exists(folder_.file("other")));
  Put(*rows, "Filter", {"FID = 99"});
  Call(*rows, "Save", {folder_.file("empty.xml")});
  EXPECT_THAT(ReadFile(folder_.file("empty.xml")), Not(HasSubstr("<z:row")));
  Call(*rows, "Close");
  EXPECT_EQ(Number([&] { Call(*rows, "Save", {folder_.file("other")}); }), 3704);
}

TEST_F(RecordsetFileTest, LeavesNoPartOfAFileOnAFullDisk) {
  const auto rows = Rows();
  for (const std::int32_t format : {0, 1}) {
    std::int32_t error = 0;
    {
      const FullDisk full(0);
      error = Number([&] { Call(*rows, "Save", {path_, format}); });
    }
    EXPECT_EQ(error, 61);
    EXPECT_FALSE(std::filesystem::exists(path_));
  }
}

}  // namespace
}  // namespace tessarlorn
