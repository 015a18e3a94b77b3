#include "hosts/objects/recordset_file.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <map>
#include <sstream>
#include <sys/resource.h>

#include "objects/object_support.h"
#include "support/temporary_folder.h"

namespace tessarlorn {
namespace {

using Attributes = std::map<std::string, std::string>;

struct SavedXml {
  /// Of AttributeType and its datatype, with prefixes, in the order of the fields.
  std::vector<Attributes> fields;
  std::vector<Attributes> rows;
};

std::string Text(const xmlChar* text) { return text == nullptr ? "" : reinterpret_cast<const char*>(text); }

void Collect(const xmlNode& node, Attributes& attributes) {
  for (const xmlAttr* own = node.properties; own != nullptr; own = own->next) {
    const std::string prefix = own->ns == nullptr ? "" : Text(own->ns->prefix) + ":";
    EXPECT_TRUE(attributes.emplace(prefix + Text(own->name), Text(own->children->content)).second) << Text(own->name);
  }
}

void Walk(const xmlNode* node, SavedXml& saved) {
  for (; node != nullptr; node = node->next) {
    const std::string name = Text(node->name);
    if (name == "AttributeType") Collect(*node, saved.fields.emplace_back());
    if (name == "datatype") Collect(*node, saved.fields.back());
    if (name == "row") Collect(*node, saved.rows.emplace_back());
    Walk(node->children, saved);
  }
}

SavedXml ReadXml(const std::string& path) {
  SavedXml saved;
  const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(xmlReadFile(path.c_str(), nullptr, 0), &xmlFreeDoc);
  EXPECT_NE(document, nullptr) << path;
  if (document != nullptr) Walk(xmlDocGetRootElement(document.get()), saved);
  return saved;
}

std::string ReadText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

class RecordsetFileTest : public testing::Test {
 protected:
  TemporaryFolder folder_;
  std::string path_ = folder_.file("rows.xml");
};

TEST_F(RecordsetFileTest, XmlReadsBackWithTypesAndValues) {
  const auto rows = Rows();
  Put(*rows, "Filter", {"FID <> 2"});
  Put(*rows, "Sort", {"FID DESC"});
  Call(*rows, "MoveLast");
  Call(*rows, "Save", {path_});
  EXPECT_EQ(Get(*rows, "AbsolutePosition").ToInt32(), 1);
  const SavedXml saved = ReadXml(path_);
  ASSERT_EQ(saved.fields.size(), 8U);
  EXPECT_EQ(saved.fields[0], (Attributes{{"name", "FID"},
                                         {"rs:number", "1"},
                                         {"dt:type", "int"},
                                         {"dt:maxLength", "4"},
                                         {"rs:precision", "10"},
                                         {"rs:fixedlength", "true"}}));
  EXPECT_EQ(saved.fields[4], (Attributes{{"name", "FDate"},
                                         {"rs:number", "5"},
                                         {"rs:nullable", "true"},
                                         {"dt:type", "dateTime"},
                                         {"rs:dbtype", "timestamp"},
                                         {"dt:maxLength", "16"},
                                         {"rs:scale", "3"},
                                         {"rs:precision", "23"},
                                         {"rs:fixedlength", "true"}}));
  EXPECT_EQ(saved.fields[6], (Attributes{{"name", "c7"},
                                         {"rs:name", "Remark, own"},
                                         {"rs:number", "7"},
                                         {"rs:nullable", "true"},
                                         {"dt:type", "string"},
                                         {"dt:maxLength", "1073741823"},
                                         {"rs:long", "true"}}));
  ASSERT_EQ(saved.rows.size(), 4U);
  EXPECT_EQ(saved.rows[0].at("FBuyer"), "O'Neil 50%");
  EXPECT_EQ(saved.rows[1], (Attributes{{"FID", "4"},
                                       {"FCost", "-1.0000"},
                                       {"FWeight", "0.1"},
                                       {"FDate", "2023-12-31T00:00:00"},
                                       {"c7", "a\tb"},
                                       {"FData", "01ab"}}));
  EXPECT_EQ(saved.rows[3].at("FPaid"), "True");
}

TEST_F(RecordsetFileTest, XmlHoldsOddNamesAndCharacters) {
  const std::vector<std::string> names = {"c2", "c 2", "fid", "FID", "fid", "", "订单", "a'<&>\"b", "1st", "c2_"};
  std::vector<Field> fields;
  for (const std::string& name : names) fields.push_back({.name = name});
  Recordset rows(fields);
  rows.BeginRow();
  const std::vector<std::string> values = {"<&>'\"", "\r\n\t", "\x01\x1F\x7F", "\xEF\xBF\xBF", "\xC3(",
                                           "张 😀",   "",       "  ",           "]]>",          "a"};
  for (const std::string& value : values) rows.AppendText(value);
  rows.Finish();
  SaveRecordset(RecordsetView(std::make_shared<Recordset>(std::move(rows))), path_, true);
  const SavedXml saved = ReadXml(path_);
  ASSERT_EQ(saved.fields.size(), names.size());
  ASSERT_EQ(saved.rows.size(), 1U);
  const std::vector<std::string> kept = {"<&>'\"", "\r\n\t", "??\x7F", "?",   "\xEF\xBF\xBD(",
                                         "张 😀",   "",       "  ",     "]]>", "a"};
  for (std::size_t i = 0; i < names.size(); ++i) {
    const Attributes& field = saved.fields[i];
    EXPECT_EQ(field.contains("rs:name") ? field.at("rs:name") : field.at("name"), names[i]);
    EXPECT_EQ(saved.rows[0].at(field.at("name")), kept[i]) << names[i];
  }
}

TEST_F(RecordsetFileTest, XmlKeepsEveryDigitAndMillisecond) {
  Recordset rows({{.name = "real", .type = FieldType::kFloat},
                  {.name = "single", .type = FieldType::kReal},
                  {.name = "at", .type = FieldType::kDateTime},
                  {.name = "day", .type = FieldType::kDate},
                  {.name = "hour", .type = FieldType::kTime}});
  rows.BeginRow();
  rows.AppendDouble(0.1 + 0.2);
  rows.AppendDouble(static_cast<double>(1.1F));
  for (int i = 0; i < 3; ++i) rows.AppendDateTime(DateTime::Parse("1899-12-31 23:59:58.997").value());
  rows.Finish();
  SaveRecordset(RecordsetView(std::make_shared<Recordset>(std::move(rows))), path_, true);
  const SavedXml saved = ReadXml(path_);
  EXPECT_EQ(saved.rows.at(0), (Attributes{{"real", "0.30000000000000004"},
                                          {"single", "1.1"},
                                          {"at", "1899-12-31T23:59:58.997"},
                                          {"day", "1899-12-31"},
                                          {"hour", "23:59:58.997"}}));
}

TEST_F(RecordsetFileTest, TextIsOneLineARow) {
  const auto rows = Rows();
  Put(*rows, "Filter", {"FID = 4"});
  const std::string path = folder_.file("rows.txt");
  Call(*rows, "Save", {path});
  EXPECT_EQ(ReadText(path),
            "FID\tFBuyer\tFCost\tFWeight\tFDate\tFPaid\tRemark, own\tFData\r\n"
            "4\t\t-1.0000\t0.1\t2023-12-31 00:00:00\t\ta b\t01ab\r\n");
  Call(*rows, "Save", {folder_.file("订单.TXT"), 1});
  EXPECT_EQ(ReadXml(folder_.file("订单.TXT")).rows.size(), 1U);
}

TEST_F(RecordsetFileTest, RefusesWithoutTouchingAnything) {
  const auto rows = Rows();
  std::ofstream(path_) << "kept";
  EXPECT_EQ(ErrorOf([&] { Call(*rows, "Save", {path_}); }), 58);
  EXPECT_EQ(ReadText(path_), "kept");
  EXPECT_EQ(ErrorOf([&] { Call(*rows, "Save", {"/dev/full"}); }), 58);
  for (const std::string& path : {folder_.file("none/rows.xml"), std::string(), folder_.file("") + "a\xFF/b"}) {
    EXPECT_EQ(ErrorOf([&] { Call(*rows, "Save", {path}); }), 76) << path;
  }
  for (const std::int32_t format : {-1, 2}) {
    EXPECT_EQ(ErrorOf([&] { Call(*rows, "Save", {folder_.file("other"), format}); }), 3001) << format;
  }
  EXPECT_FALSE(std::filesystem::exists(folder_.file("other")));
  Put(*rows, "Filter", {"FID = 99"});
  Call(*rows, "Save", {folder_.file("empty.xml")});
  EXPECT_TRUE(ReadXml(folder_.file("empty.xml")).rows.empty());
  Call(*rows, "Close");
  EXPECT_EQ(ErrorOf([&] { Call(*rows, "Save", {folder_.file("other")}); }), 3704);
}

/// No file of this process may grow while it lives.
class FullDisk {
 public:
  FullDisk() : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit none = {0, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &none);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    static_cast<void>(std::signal(SIGXFSZ, handler_));
  }

 private:
  void (*handler_)(int);
  rlimit before_{};
};

TEST_F(RecordsetFileTest, LeavesNoPartOfAFileOnAFullDisk) {
  const auto rows = Rows();
  for (const std::int32_t format : {0, 1}) {
    std::int32_t error = 0;
    {
      const FullDisk full;
      error = ErrorOf([&] { Call(*rows, "Save", {path_, format}); });
    }
    EXPECT_EQ(error, 61);
    EXPECT_FALSE(std::filesystem::exists(path_));
  }
}

}  // namespace
}  // namespace tessarlorn
