// What SQL Server answers, case by case: sqlserver_cases.json.
#include "support/sqlserver_cases.h"

namespace tessarlorn {
namespace {

class SqlServerCase : public testing::TestWithParam<std::size_t> {};

TEST_P(SqlServerCase, AnswersAlike) { RunSqlServerCase(SqlServerCases()[GetParam()], *OpenEmbedded()); }

INSTANTIATE_TEST_SUITE_P(All, SqlServerCase, testing::Range<std::size_t>(0, SqlServerCases().size()));

}  // namespace
}  // namespace tessarlorn
