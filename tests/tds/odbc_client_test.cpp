// A program of ODBC at a served database, over FreeTDS's driver: bound parameters, output values and transactions.
// FreeTDS's and unixODBC's own tools (tsql, bsqldb, isql) send texts only.
#ifdef TESSARLORN_HAS_ODBC
#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>
#include <string>
#include <string_view>

#include "support/served_database.h"
#include "tds/server_support.h"

namespace tessarlorn::tds {
namespace {

using testing::ElementsAre;

/// The bytes of a text, as ODBC takes what it only reads.
SQLCHAR* Bytes(const std::string& text) {
  return static_cast<SQLCHAR*>(static_cast<void*>(const_cast<char*>(text.data())));
}

class Handle {
 public:
  Handle(SQLSMALLINT kind, SQLHANDLE parent) : kind_(kind) { SQLAllocHandle(kind, parent, &handle_); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (kind_ == SQL_HANDLE_DBC) SQLDisconnect(handle_);
    SQLFreeHandle(kind_, handle_);
  }

  [[nodiscard]] SQLHANDLE get() const { return handle_; }
  /// State and text of the first error.
  [[nodiscard]] std::string Trouble() const {
    std::array<SQLCHAR, 6> state{};
    std::array<SQLCHAR, 512> text{};
    SQLINTEGER number = 0;
    SQLGetDiagRec(kind_, handle_, 1, state.data(), &number, text.data(), text.size(), nullptr);
    return std::string(state.begin(), state.end() - 1) + " " + std::string(text.begin(), text.end()).c_str();
  }

 private:
  SQLSMALLINT kind_;
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

class Statement : public Handle {
 public:
  explicit Statement(const Handle& connection) : Handle(SQL_HANDLE_STMT, connection.get()) {}

  [[nodiscard]] bool Prepare(const std::string& text) const { return SQLPrepare(get(), Bytes(text), SQL_NTS) == 0; }
  [[nodiscard]] bool Execute() const { return SQLExecute(get()) != SQL_ERROR; }
  /// A value that is bound as text, and that the server has as `type`.
  void BindText(SQLUSMALLINT position, SQLSMALLINT type, SQLULEN size, SQLSMALLINT digits,
                const std::string& value) const {
    SQLBindParameter(get(), position, SQL_PARAM_INPUT, SQL_C_CHAR, type, size, digits, Bytes(value),
                     static_cast<SQLLEN>(value.size() + 1), nullptr);
  }
  void BindInt(SQLUSMALLINT position, SQLSMALLINT direction, SQLINTEGER& value) const {
    SQLBindParameter(get(), position, direction, SQL_C_SLONG, SQL_INTEGER, 0, 0, &value, sizeof value, nullptr);
  }
  /// The columns of the next row as texts, none behind the last row. The cursor is closed then.
  [[nodiscard]] std::vector<std::string> Fetch() const {
    std::vector<std::string> row;
    SQLSMALLINT columns = 0;
    SQLNumResultCols(get(), &columns);
    if (!SQL_SUCCEEDED(SQLFetch(get()))) {
      while (SQLMoreResults(get()) == SQL_SUCCESS) {
      }
      return row;
    }
    for (SQLUSMALLINT i = 1; i <= columns; ++i) {
      std::array<char, 256> value{};
      SQLLEN size = 0;
      SQLGetData(get(), i, SQL_C_CHAR, value.data(), value.size(), &size);
      row.emplace_back(size == SQL_NULL_DATA ? "null" : value.data());
    }
    return row;
  }
};

class OdbcClientTest : public testing::Test {
 protected:
  OdbcClientTest() : environment_(SQL_HANDLE_ENV, SQL_NULL_HANDLE), connection_(Made(environment_)) {
    const std::string string = "Driver=" + FreeTdsDriver() +
                               ";Server=127.0.0.1;Port=" + std::to_string(server_.port()) +
                               ";UID=ann;PWD=s3cret;TDS_Version=7.4;ClientCharset=UTF-8";
    EXPECT_TRUE(SQL_SUCCEEDED(
        SQLDriverConnect(connection_.get(), nullptr, Bytes(string), SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)))
        << connection_.Trouble();
  }

  /// Runs a text without parameters, and answers its first row.
  [[nodiscard]] std::vector<std::string> Run(const std::string& text) const {
    const Statement statement(connection_);
    EXPECT_NE(SQLExecDirect(statement.get(), Bytes(text), SQL_NTS), SQL_ERROR) << statement.Trouble();
    return statement.Fetch();
  }

  ServerProcess server_;
  Handle environment_;
  Handle connection_;

 private:
  static const Handle& OfVersion3(const Handle& environment) {
    // The driver manager takes the number in the pointer's place.
    SQLSetEnvAttr(environment.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    return environment;
  }
  static Handle Made(const Handle& environment) { return {SQL_HANDLE_DBC, OfVersion3(environment).get()}; }
};

TEST_F(OdbcClientTest, BindsParameters) {
  const Statement statement(connection_);
  ASSERT_TRUE(statement.Prepare("select ? + 1, ?, ?, ?, ?, ?")) << statement.Trouble();
  SQLINTEGER number = 41;
  const std::string text = "it's 中😀";
  std::array<unsigned char, 3> bytes = {0, 1, 255};
  SQLLEN byte_count = bytes.size();
  SQLLEN null = SQL_NULL_DATA;
  const std::string decimal = "12345678901234567.125";
  const std::string moment = "2024-02-29 12:34:56.790";
  statement.BindInt(1, SQL_PARAM_INPUT, number);
  statement.BindText(2, SQL_WVARCHAR, 40, 0, text);
  statement.BindText(3, SQL_DECIMAL, 20, 3, decimal);
  statement.BindText(4, SQL_TYPE_TIMESTAMP, 23, 3, moment);
  SQLBindParameter(statement.get(), 5, SQL_PARAM_INPUT, SQL_C_BINARY, SQL_VARBINARY, 10, 0, bytes.data(), bytes.size(),
                   &byte_count);
  SQLBindParameter(statement.get(), 6, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 0, 0, &number, 0, &null);
  ASSERT_TRUE(statement.Execute()) << statement.Trouble();
  EXPECT_THAT(statement.Fetch(), ElementsAre("42", text, decimal, moment, "0001ff", "null"));
  (void)statement.Fetch();
  // Prepared once, run twice.
  number = -8;
  ASSERT_TRUE(statement.Execute()) << statement.Trouble();
  EXPECT_THAT(statement.Fetch(), testing::Contains("-7"));
}

TEST_F(OdbcClientTest, CallsProceduresWithOutputValues) {
  (void)Run("create procedure Twice @n int, @twice int output as begin set @twice = @n * 2 return 5 end");
  const Statement statement(connection_);
  ASSERT_TRUE(statement.Prepare("{? = call Twice(?, ?)}")) << statement.Trouble();
  SQLINTEGER status = 0;
  SQLINTEGER number = 21;
  SQLINTEGER twice = 0;
  statement.BindInt(1, SQL_PARAM_OUTPUT, status);
  statement.BindInt(2, SQL_PARAM_INPUT, number);
  statement.BindInt(3, SQL_PARAM_OUTPUT, twice);
  ASSERT_TRUE(statement.Execute()) << statement.Trouble();
  (void)statement.Fetch();
  EXPECT_EQ(status, 5);
  EXPECT_EQ(twice, 42);
}

TEST_F(OdbcClientTest, EndsTransactions) {
  (void)Run("create table T (n int)");
  const auto commit_by_itself = [this](SQLULEN value) {
    SQLSetConnectAttr(connection_.get(), SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(value), 0);
  };
  commit_by_itself(SQL_AUTOCOMMIT_OFF);
  (void)Run("insert T values (1)");
  EXPECT_TRUE(SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection_.get(), SQL_ROLLBACK)));
  (void)Run("insert T values (2)");
  EXPECT_TRUE(SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection_.get(), SQL_COMMIT)));
  commit_by_itself(SQL_AUTOCOMMIT_ON);
  EXPECT_THAT(Run("select sum(n), @@trancount from T"), ElementsAre("2", "0"));
}

}  // namespace
}  // namespace tessarlorn::tds
#endif
