// The cases of the embedded database once more, through ODBC and the served database.
#include "support/sqlserver_cases.h"

#include "drivers/odbc/odbc_driver.h"
#include "support/served_test.h"

namespace tessarlorn {
namespace {

/// Drops what a case made. What others refer to goes in a later round.
void Empty(Connection& connection) {
  for (int round = 0; round < 5; ++round) {
    const RecordsetPtr objects = connection.Execute("select name, type from sys.objects");
    for (; !objects->eof(); objects->MoveNext()) {
      const std::string kind = objects->GetText(1).starts_with('V') ? "view" : "table";
      Answer(connection, "drop " + kind + " [" + std::string(objects->GetText(0)) + "]");
    }
  }
  ASSERT_EQ(connection.Execute("select name from sys.objects")->RecordCount(), 0U);
}

class OdbcSqlServerCases : public ServedTest {};

TEST_F(OdbcSqlServerCases, AnswerAlike) {
  RegisterOdbcDriver();
  const auto connection = OpenConnection(Shared().odbc());
  for (const auto& one : SqlServerCases()) {
    RunSqlServerCase(one, *OpenConnection(Shared().odbc()));
    Empty(*connection);
  }
}

}  // namespace
}  // namespace tessarlorn
