#include "frame/switches.h"

#include "frame/text_builder.h"

namespace tessarlorn {

bool IsSwitchOn(Connection& connection, std::string_view key) {
  TextBuilder text;
  text.Line("select COUNT(1) as flag  from t_SystemProfile where FKey ='", key, "' and FValue =1 ");
  return connection.Execute(text.GetText())->Get("Flag").ToInt32() > 0;
}

}  // namespace tessarlorn
