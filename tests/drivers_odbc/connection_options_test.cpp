#include "drivers/odbc/connection_options.h"

#include <gmock/gmock.h>

#include "support/error_of.h"

namespace tessarlorn::odbc {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string Fault(std::string_view text) {
  const Error error = ErrorOf([text] { ParseConnectionOptions(text); });
  EXPECT_EQ(error.number(), error_number::kLoginRefused);
  return error.description();
}

TEST(ConnectionOptions, KeepTheComponentsOwnKeysFromOdbc) {
  const ConnectionOptions options = ParseConnectionOptions(
      "Driver={Some Driver 18};Server=db1,1433; logintimeout=3;UID=sh}op;PWD={a;b}}c };StatementTimeout=60");
  EXPECT_EQ(options.odbc_string, "Driver=Some Driver 18;Server=db1,1433;UID=sh}op;PWD={a;b}}c };");
  EXPECT_EQ(options.login_timeout, 3);
  EXPECT_EQ(options.statement_timeout, 60);
  EXPECT_EQ(options.WithoutPassword("login with a;b}c  failed"), "login with *** failed");
  EXPECT_EQ(ParseConnectionOptions("DSN=x;PWD=o").WithoutPassword("Login of 'bob': o, 密码o"),
            "Login of 'bob': ***, 密码***");
  EXPECT_EQ(ParseConnectionOptions("DSN=x").login_timeout, 15);
  EXPECT_EQ(ParseConnectionOptions("DSN=x").statement_timeout, 0);
}

TEST(ConnectionOptions, NameTheKeyAtFaultAndNoPassword) {
  EXPECT_THAT(Fault("DSN=x;LoginTimeout=soon"),
              AllOf(HasSubstr("LoginTimeout in the connection string"), Not(HasSubstr("soon"))));
  EXPECT_THAT(Fault("DSN=x;StatementTimeout=-1"), HasSubstr("StatementTimeout"));
  EXPECT_THAT(Fault("DSN=x;dsn=y"), HasSubstr("dsn is doubled"));
  EXPECT_THAT(Fault("DSN=x;PWD=se;cret"), AllOf(HasSubstr("braces"), Not(HasSubstr("cret"))));
  EXPECT_THAT(Fault("DSN=x;PWD=se;cret=1;cret=2"), Not(HasSubstr("cret")));
  EXPECT_THAT(Fault("DSN=x;PWD={se;cret"), AllOf(HasSubstr("PWD"), Not(HasSubstr("cret"))));
}

}  // namespace
}  // namespace tessarlorn::odbc
