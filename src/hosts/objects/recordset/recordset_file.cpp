#include "hosts/objects/recordset/recordset_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string_view>
#include <system_error>
#include <vector>

#include "hosts/objects/recordset/field_traits.h"
#include "platform/file_path.h"
#include "platform/text/text.h"
#include "platform/value_text.h"
#include "tessarlorn/error.h"

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

/// As the value of an attribute between single quotes.
std::string Escaped(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size();) {
    const char32_t c = NextCharacter(text, i);
    switch (c) {
      case U'&':
        out += "&amp;";
        break;
      case U'<':
        out += "&lt;";
        break;
      case U'>':
        out += "&gt;";
        break;
      case U'\'':
        out += "&#x27;";
        break;
      case U'\t':
        out += "&#x9;";
        break;
      case U'\r':
        out += "&#xD;";
        break;
      case U'\n':
        out += "&#xA;";
        break;
      default:
        // No other control character can stand in XML, nor can these two.
        AppendCharacter(out, c < U' ' || c == 0xfffe || c == 0xffff ? U'?' : c);
    }
  }
  return out;
}

std::string ValueText(const Variant& value, const Field& field) {
  const Variant own = ClientValue(field, value);
  if (const auto* number = own.get_if<double>()) return ExactText(*number);
  std::string text = CellText(field, value);
  if (value.holds<DateTime>()) std::replace(text.begin(), text.end(), ' ', 'T');
  return Escaped(text);
}

/// The attributes under which the fields stand: their names, and others for those that cannot be one or are taken.
std::vector<std::string> AttributeNames(const std::vector<Field>& fields) {
  std::vector<std::string> names(fields.size());
  std::set<std::string> taken;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (IsXmlName(fields[i].name) && taken.insert(fields[i].name).second) names[i] = fields[i].name;
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (!names[i].empty()) continue;
    names[i] = "c" + std::to_string(i + 1);
    while (!taken.insert(names[i]).second) names[i] += '_';
  }
  return names;
}

void WriteField(const Field& field, std::size_t number, const std::string& attribute, std::ostream& out) {
  const FieldTraits traits = TraitsOf(field);
  out << "\t\t<s:AttributeType name='" << attribute << '\'';
  if (attribute != field.name) out << " rs:name='" << Escaped(field.name) << '\'';
  out << " rs:number='" << number << '\'' << (field.nullable ? " rs:nullable='true'" : "")
      << ">\r\n\t\t\t<s:datatype dt:type='" << traits.xml_type << '\'';
  if (!traits.xml_database_type.empty()) out << " rs:dbtype='" << traits.xml_database_type << '\'';
  out << " dt:maxLength='" << traits.size << '\'';
  if (traits.scale != FieldTraits::kNone) out << " rs:scale='" << traits.scale << '\'';
  if (traits.precision != FieldTraits::kNone) out << " rs:precision='" << traits.precision << '\'';
  out << (traits.fixed_length ? " rs:fixedlength='true'" : "") << (traits.unlimited ? " rs:long='true'" : "")
      << "/>\r\n\t\t</s:AttributeType>\r\n";
}

void WriteXml(const RecordsetView& view, std::ostream& out) {
  const std::vector<Field>& fields = view.fields();
  const std::vector<std::string> names = AttributeNames(fields);
  out << "<xml xmlns:s='uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882'\r\n"
         "\txmlns:dt='uuid:C2F41010-65B3-11d1-A29F-00AA00C14882'\r\n"
         "\txmlns:rs='urn:schemas-microsoft-com:rowset'\r\n"
         "\txmlns:z='#RowsetSchema'>\r\n"
         "<s:Schema id='RowsetSchema'>\r\n"
         "\t<s:ElementType name='row' content='eltOnly'>\r\n";
  for (std::size_t i = 0; i < fields.size(); ++i) WriteField(fields[i], i + 1, names[i], out);
  out << "\t\t<s:extends type='rs:rowbase'/>\r\n\t</s:ElementType>\r\n</s:Schema>\r\n<rs:data>\r\n";
  for (std::size_t position = 1; view.IsRow(position); ++position) {
    out << "\t<z:row";
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const Variant value = view.Value(position, i);
      if (!value.is_null()) out << ' ' << names[i] << "='" << ValueText(value, fields[i]) << '\'';
    }
    out << "/>\r\n";
  }
  out << "</rs:data>\r\n</xml>\r\n";
}

void WriteText(const RecordsetView& view, std::ostream& out) {
  const std::vector<Field>& fields = view.fields();
  // A tab or a line end inside a value would look like one between values.
  const auto cell = [](std::string text) {
    const auto separates = [](char c) { return c == '\t' || c == '\r' || c == '\n'; };
    std::replace_if(text.begin(), text.end(), separates, ' ');
    return text;
  };
  for (std::size_t i = 0; i < fields.size(); ++i) out << (i == 0 ? "" : "\t") << cell(fields[i].name);
  out << "\r\n";
  for (std::size_t position = 1; view.IsRow(position); ++position) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      out << (i == 0 ? "" : "\t") << cell(CellText(fields[i], view.Value(position, i)));
    }
    out << "\r\n";
  }
}

}  // namespace

void SaveRecordset(const RecordsetView& view, const std::string& path, bool as_xml) {
  static_cast<void>(view.rows());
  const std::filesystem::path file = ToPath(path);
  std::error_code ignored;
  if (std::filesystem::exists(file, ignored)) Raise(kFileExists, "File already exists: " + path);
  std::ofstream out(file, std::ios::binary);
  if (!out) Raise(kPathNotFound, "The file cannot be written: " + path);
  const auto remove = [&] {
    out.close();
    std::filesystem::remove(file, ignored);
  };
  try {
    as_xml ? WriteXml(view, out) : WriteText(view, out);
    out.close();
  } catch (...) {
    remove();
    throw;
  }
  if (out) return;
  remove();
  Raise(kDiskFull, "Disk full: " + path);
}

std::string RecordsetXml(const RecordsetView& view) {
  std::ostringstream out;
  WriteXml(view, out);
  return std::move(out).str();
}

}  // namespace tessarlorn
