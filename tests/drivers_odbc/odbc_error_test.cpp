#include "drivers/odbc/odbc_error.h"

#include <gtest/gtest.h>

namespace tessarlorn::odbc {
namespace {

TEST(OdbcError, TheNumberFollowsTheServersOwnElseTheState) {
  const std::pair<Diagnostic, std::int32_t> cases[] = {
      {{"42000", 102, ""}, error_number::kStatementError},    {{"42000", 50000, ""}, error_number::kStatementError},
      {{"23000", 7777, ""}, error_number::kConstraintBroken}, {{"HY000", 7777, ""}, error_number::kStatementError},
      {{"42S02", 208, ""}, error_number::kNoSuchTable},       {{"23000", 2627, ""}, error_number::kConstraintBroken},
      {{"22018", 245, ""}, error_number::kConversionFailed},  {{"22003", 8115, ""}, error_number::kDataOverflow},
      {{"22001", 2628, ""}, error_number::kDataOverflow},     {{"40001", 1205, ""}, error_number::kAbortedDeadlock},
      {{"42000", 229, ""}, error_number::kPermissionDenied},  {{"HYT00", 0, ""}, error_number::kTimeout},
      {{"HY008", 0, ""}, error_number::kCancelled},           {{"28000", 18456, ""}, error_number::kLoginRefused},
      {{"08S01", 20004, ""}, error_number::kDatabaseFailure}, {{"HY000", 0, ""}, error_number::kDatabaseFailure},
      {{"42000", 6005, ""}, error_number::kDatabaseFailure},  {{"HY000", 40613, ""}, error_number::kDatabaseFailure},
  };
  for (const auto& [record, wanted] : cases) {
    EXPECT_EQ(ToError(record).number(), wanted) << record.sqlstate << ' ' << record.native;
  }
  EXPECT_EQ(ToLoginError({"08S01", 20009, ""}).number(), error_number::kLoginRefused);
  EXPECT_EQ(ToLoginError({"HYT01", 0, ""}).number(), error_number::kTimeout);
}

TEST(OdbcError, TheFirstErrorThatNamesACauseCounts) {
  const Diagnostic message{"01000", 0, "printed"};
  const Diagnostic terminated{"42000", 3621, "The statement has been terminated."};
  const Diagnostic broken{"23000", 2627, "Violation"};
  const Diagnostic connect{"08001", 0, "Unable to connect to data source"};
  EXPECT_EQ(Cause({message, terminated, broken, {"42000", 102, "later"}}).native, 2627);
  const Diagnostic refused{"28000", 18456, "Login failed"};
  EXPECT_EQ(LoginCause({connect, refused}).native, 18456);
  EXPECT_EQ(LoginCause({refused, {"01000", 5701, "Changed database"}, {"08004", 4060, "Cannot open x"}}).native, 4060);
  EXPECT_EQ(Cause({message, connect}).sqlstate, "08001");
  EXPECT_EQ(Cause({message}).text, "printed");
  EXPECT_EQ(Cause({}).sqlstate, "HY000");
}

TEST(OdbcError, ALostConnectionIsKnownAndSaysSo) {
  EXPECT_TRUE(IsConnectionLost({"42000", 6005, ""}));
  EXPECT_FALSE(IsConnectionLost({"42000", 7777, ""}));
  const std::pair<Diagnostic, const char*> cases[] = {
      {{"HY000", 0, "Unknown error"}, "The connection to the server was lost"},
      {{"01000", 0, "printed"}, "The connection to the server was lost"},
      {Cause({}), "The connection to the server was lost"},
      {{"08S01", 0, "Link failure"}, "The connection to the server was lost: Link failure"},
      {{"42000", 6005, "SHUTDOWN is in progress."}, "SHUTDOWN is in progress."},
  };
  for (const auto& [record, wanted] : cases) {
    const Error error = ToError(OfLostConnection(record));
    EXPECT_EQ(error.number(), error_number::kDatabaseFailure) << record.text;
    EXPECT_EQ(error.description(), wanted);
    EXPECT_EQ(error.native().sqlstate, "08S01");
  }
  EXPECT_EQ(ToError(OfLostConnection({"HYT00", 0, "Timeout expired"})).number(), error_number::kTimeout);
}

TEST(OdbcError, TheServersTextComesWithoutDriverPrefixes) {
  EXPECT_EQ(WithoutPrefixes("[FreeTDS][SQL Server][a] is no name"), "[a] is no name");
  EXPECT_EQ(WithoutPrefixes("[unixODBC][Driver Manager]Can't open lib"), "Can't open lib");
  EXPECT_EQ(WithoutPrefixes("[only] [a bracket"), " [a bracket");
  EXPECT_EQ(WithoutPrefixes("[half"), "[half");
  EXPECT_EQ(WithoutPrefixes("[FreeTDS][SQL Server]"), "");
}

}  // namespace
}  // namespace tessarlorn::odbc
