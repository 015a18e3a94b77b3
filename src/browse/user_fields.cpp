#include "browse/user_fields.h"

#include "frame/text_builder.h"

namespace tessarlorn {

std::string UserDefinedFields(Connection& connection, std::string_view alias, OrderPage page) {
  const char digit = static_cast<char>(page);
  TextBuilder text;
  text.Line("declare @strFld as varchar(1000)");
  text.Line("select @strFld=''");
  text.Line("select @strFld=@strFld+',", alias, ".'+FFieldName ");
  text.Line("from ICClassTableInfo where FClassTypeID=1014301 and FUserDefine=1 and FPage=",
            std::string_view(&digit, 1));
  text.Line("select isnull(@strFld,'') as UserDefineFld");
  const RecordsetPtr fields = connection.Query(text.GetText());
  return fields == nullptr || fields->eof() ? std::string() : fields->Get("UserDefineFld").ToText();
}

}  // namespace tessarlorn
