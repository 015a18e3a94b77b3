// The default web-order component: operation log, field log and log switches, on the thread's current session.
#pragma once

#include "tessarlorn/object.h"

namespace tessarlorn {

/// Runs on the connection of the session that the calling operation has open; raises 91 when there is none, and the
/// database's errors. Texts are escaped; those too long for their column are cut.
///
/// - WriteSaveOrderLog(FID, EntryID, FieldName, Value): one row in IC_TradeFieldLog with the acting user and the
///   database's time; an FID or EntryID of "" is stored as NULL. True.
/// - WriteOPLog(log Dictionary, connection string): one row in IC_TradeLog for each order of its list "sFID". True when
///   there was one to write. The connection string is not used: the current session was opened with it.
/// - IsLogEnable(code): whether the setting "TradeLog" + code of category EC is 1.
class WebOrderLog : public Object {
 public:
  Variant Call(std::string_view method, std::span<const Variant> arguments) override;
};

}  // namespace tessarlorn
