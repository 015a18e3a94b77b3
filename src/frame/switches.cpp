#include "frame/switches.h"

#include "frame/results.h"
#include "frame/text_builder.h"

namespace tessarlorn {

bool IsSwitchOn(Connection& connection, std::string_view key) {
  TextBuilder text;
  text.Line("select COUNT(1) as flag  from t_SystemProfile where FKey ='", key, "' and FValue =1 ");
  return ReadFlag(connection, text.GetText());
}

}  // namespace tessarlorn
