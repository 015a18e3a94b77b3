#include "objects/recordset_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "platform/error.h"
#include "platform/text.h"

namespace tessarlorn {
namespace {

constexpr std::int32_t kFileExists = 58;
constexpr std::int32_t kDiskFull = 61;
constexpr std::int32_t kPathNotFound = 76;

bool IsXmlName(std::string_view name) {
  const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
  return !name.empty() && letter(name[0]) &&
         std::all_of(name.begin(), name.end(), [&](char c) { return letter(c) || (c >= '0' && c <= '9'); });
}

std::string Escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '\'':
        out += "&#x27;";
        break;
      case '\t':
      case '\r':
      case '\n':
        out += c == '\t' ? "&#x9;" : c == '\r' ? "&#xD;" : "&#xA;";
        break;
      default:
        // No other control character can stand in XML.
        out += static_cast<unsigned char>(c) < ' ' ? '?' : c;
    }
  }
  return out;
}

/// Type and size as the schema of the file has them.
std::string DataType(const Field& field) {
  const auto typed = [](std::string_view type, int size) {
    std::string text = "dt:type='";
    return text.append(type).append("' dt:maxLength='").append(std::to_string(size)).append("'");
  };
  constexpr int kUnlimited = 1073741823;
  const int size = field.size == 0 ? kUnlimited : field.size;
  switch (field.type) {
    case FieldType::kBit:
      return typed("boolean", 2);
    case FieldType::kTinyInt:
      return typed("ui1", 1) + " rs:precision='3' rs:fixedlength='true'";
    case FieldType::kSmallInt:
      return typed("i2", 2) + " rs:precision='5' rs:fixedlength='true'";
    case FieldType::kInt:
      return typed("int", 4) + " rs:precision='10' rs:fixedlength='true'";
    case FieldType::kBigInt:
      return typed("i8", 8) + " rs:precision='19' rs:fixedlength='true'";
    case FieldType::kReal:
      return typed("r4", 4) + " rs:precision='7' rs:fixedlength='true'";
    case FieldType::kFloat:
      return typed("float", 8) + " rs:precision='15' rs:fixedlength='true'";
    case FieldType::kDecimal:
      return "dt:type='number' rs:dbtype='numeric' dt:maxLength='19' rs:scale='" + std::to_string(field.scale) +
             "' rs:precision='" + std::to_string(field.precision) + "'";
    case FieldType::kMoney:
      return "dt:type='number' rs:dbtype='currency' dt:maxLength='8' rs:precision='19'";
    case FieldType::kDate:
      return typed("date", 6);
    case FieldType::kTime:
      return typed("time", 6);
    case FieldType::kDateTime:
      return "dt:type='dateTime' rs:dbtype='timestamp' dt:maxLength='16' rs:scale='3' rs:precision='23'";
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      return typed("bin.hex", size);
    case FieldType::kGuid:
      return typed("uuid", 16);
    default:
      return typed("string", size);
  }
}

std::string ValueText(const Variant& value, const Field& field) {
  if (const auto* flag = value.get_if<bool>()) return *flag ? "True" : "False";
  if (const auto* bytes = value.get_if<Bytes>()) return LowerCase(HexText(bytes->data(), bytes->size()));
  if (const auto* date = value.get_if<DateTime>()) {
    std::string text = date->ToString(field.type == FieldType::kDateTime && date->milliseconds() % 1000 != 0);
    if (field.type == FieldType::kDate) return text.substr(0, 10);
    if (field.type == FieldType::kTime) return text.substr(11);
    text[10] = 'T';
    return text;
  }
  return Escaped(value.ToText());
}

void WriteXml(RecordsetView& view, std::ostream& out) {
  const std::vector<Field>& fields = view.rows().fields();
  std::vector<std::string> names;
  out << "<xml xmlns:s='uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882'\r\n"
         "\txmlns:dt='uuid:C2F41010-65B3-11d1-A29F-00AA00C14882'\r\n"
         "\txmlns:rs='urn:schemas-microsoft-com:rowset'\r\n"
         "\txmlns:z='#RowsetSchema'>\r\n"
         "<s:Schema id='RowsetSchema'>\r\n"
         "\t<s:ElementType name='row' content='eltOnly'>\r\n";
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::string& name = fields[i].name;
    const bool taken = std::any_of(fields.begin(), fields.begin() + static_cast<std::ptrdiff_t>(i),
                                   [&](const Field& other) { return other.name == name; });
    const bool own = IsXmlName(name) && !taken;
    names.push_back(own ? name : "c" + std::to_string(i + 1));
    out << "\t\t<s:AttributeType name='" << names.back() << '\'';
    if (!own) out << " rs:name='" << Escaped(name) << '\'';
    out << " rs:number='" << i + 1 << '\'' << (fields[i].nullable ? " rs:nullable='true'" : "")
        << ">\r\n\t\t\t<s:datatype " << DataType(fields[i]) << "/>\r\n\t\t</s:AttributeType>\r\n";
  }
  out << "\t\t<s:extends type='rs:rowbase'/>\r\n\t</s:ElementType>\r\n</s:Schema>\r\n<rs:data>\r\n";
  for (view.set_position(1); !view.eof(); view.Move(1)) {
    out << "\t<z:row";
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const Variant value = view.Value(i);
      if (!value.is_null()) out << ' ' << names[i] << "='" << ValueText(value, fields[i]) << '\'';
    }
    out << "/>\r\n";
  }
  out << "</rs:data>\r\n</xml>\r\n";
}

void WriteText(RecordsetView& view, std::ostream& out) {
  const std::vector<Field>& fields = view.rows().fields();
  // A tab or a line end inside a value would look like one between values.
  const auto cell = [](std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\t' || c == '\r' || c == '\n'; }, ' ');
    return text;
  };
  for (std::size_t i = 0; i < fields.size(); ++i) out << (i == 0 ? "" : "\t") << cell(fields[i].name);
  out << "\r\n";
  for (view.set_position(1); !view.eof(); view.Move(1)) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const Variant value = view.Value(i);
      out << (i == 0 ? "" : "\t") << (value.is_null() ? "" : cell(value.ToText()));
    }
    out << "\r\n";
  }
}

}  // namespace

void SaveRecordset(RecordsetView& view, const std::string& path, bool as_xml) {
  static_cast<void>(view.rows());
  const std::filesystem::path file(std::u8string(path.begin(), path.end()));
  std::error_code ignored;
  if (std::filesystem::exists(file, ignored)) Raise(kFileExists, "File already exists: " + path);
  std::ofstream out(file, std::ios::binary);
  if (!out) Raise(kPathNotFound, "The file cannot be written: " + path);
  as_xml ? WriteXml(view, out) : WriteText(view, out);
  out.close();
  if (out) return;
  std::filesystem::remove(file, ignored);
  Raise(kDiskFull, "Disk full: " + path);
}

}  // namespace tessarlorn
