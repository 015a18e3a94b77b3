// The cases of the embedded database once more, through ODBC: on the served database, or on the server that
// TESSARLORN_TEST_DSN names.
#include "support/sqlserver_cases.h"

#include "support/test_database.h"

namespace tessarlorn {
namespace {

/// Drops what a case made. What others refer to goes in a later round.
void Empty(Connection& connection) {
  constexpr const char* kObjects = "select name, type from sys.objects where type in ('U', 'V', 'P')";
  for (int round = 0; round < 5; ++round) {
    const RecordsetPtr objects = connection.Execute(kObjects);
    for (; !objects->eof(); objects->MoveNext()) {
      const std::string_view type = objects->GetText(1);
      const std::string kind = type.starts_with("V") ? "view" : type.starts_with("P") ? "procedure" : "table";
      Answer(connection, "drop " + kind + " [" + std::string(objects->GetText(0)) + "]");
    }
  }
  ASSERT_EQ(connection.Execute(kObjects)->RecordCount(), 0U);
}

TEST(OdbcSqlServerCases, AnswerAlike) {
  const TestDatabase database(Reach::kOverOdbc);
  const auto connection = OpenConnection(database.string());
  for (const auto& one : SqlServerCases()) {
    RunSqlServerCase(one, *OpenConnection(database.string()));
    Empty(*connection);
  }
}

}  // namespace
}  // namespace tessarlorn
