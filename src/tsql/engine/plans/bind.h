// Values into compiled statements.
#pragma once

#include <memory>

#include "tsql/engine/plans/activation.h"
#include "tsql/engine/state/session_database.h"
#include "tsql/engine/state/system_values.h"

namespace tessarlorn::tsql {

class Binder {
 public:
  Binder(SessionDatabase& database, const SystemValues& system) : database_(database), system_(system) {}

  /// Gives every parameter its value. Prepares the statement on its first use.
  void Bind(Compiled& compiled, const Activation& activation);
  /// What the parameter is bound with, unless it is a list.
  Datum Value(const BoundParameter& parameter, const Activation& activation);

 private:
  void BindParameter(SqliteStatement& statement, int index, const BoundParameter& parameter,
                     const Activation& activation);
  std::shared_ptr<const ListItems> ListValues(const BoundParameter& parameter, const Activation& activation);

  SessionDatabase& database_;
  const SystemValues& system_;
};

}  // namespace tessarlorn::tsql
