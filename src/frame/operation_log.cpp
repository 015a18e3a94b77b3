// The three log operations of clsSaveData, which hand the writing to the web-order component.
#include <array>

#include "frame/identity.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {
namespace {

constexpr std::string_view kWebOrder = "TessarMWebOrder.TessarMWebOrderUpdate";

}  // namespace

bool clsSaveData::WriteSaveOrderLog(std::string_view FID, std::string_view EntryID, std::string_view FieldName,
                                    std::string_view Value) {
  const std::array<Variant, 4> arguments = {FID, EntryID, FieldName, Value};
  return CallSibling(*session_, kWebOrder, "WriteSaveOrderLog", arguments).ToBool();
}

bool clsSaveData::WriteOPLog(std::string_view sFID, std::string_view OPCode, std::string_view ItemID,
                             std::string_view FOldValue, std::string_view FNewValue) {
  Dictionary log;
  log.SetValue("sFID", sFID);
  log.SetValue("FOPUserID", CurrentUserId(*session_));
  log.SetValue("FOPCode", OPCode);
  log.SetValue("FUserIP", ClientAddress(*session_));
  log.SetValue("FOPTime", host_.LocalNow());
  log.SetValue("FItemID", ItemID);
  log.SetValue("FOldValue", FOldValue);
  log.SetValue("FNewValue", FNewValue);
  const std::array<Variant, 2> arguments = {std::move(log), session_->GetDsn()};
  return CallSibling(*session_, kWebOrder, "WriteOPLog", arguments).ToBool();
}

bool clsSaveData::IsLogEnable(std::string_view OPCode) {
  const std::array<Variant, 1> arguments = {OPCode};
  return CallSibling(*session_, kWebOrder, "IsLogEnable", arguments).ToBool();
}

}  // namespace tessarlorn
