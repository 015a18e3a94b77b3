// The ODBC driver against loops written for ODBC by hand, all on the served database over loopback.
#include "bench/ratios.h"

#ifdef TESSARLORN_HAS_ODBC
#include <array>
#include <cstring>
#include <sql.h>
#include <sqlext.h>
#include <string>
#include <vector>

#include "bench/databases.h"
#include "platform/text/text.h"
#include "platform/unicode/utf16.h"
#include "support/served_database.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/error.h"
#include "tessarlorn/odbc_driver.h"
#include "tessarlorn/session.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 100000;
constexpr const char* kSmall = "select COUNT(1) as flag from t_SystemProfile where FKey ='ECWeightting' and FValue =1";

ServedDatabase& Served() {
  static ServedDatabase served({}, 0, "Embedded=" + SampleFile(kOrders));
  return served;
}

/// The text that lists all orders, as the operation sends it.
const std::string& ListText() {
  static const std::string text = [] {
    std::string longest;
    TheHost().ObserveStatements([&longest](std::string_view sent) {
      if (sent.size() > longest.size()) longest = sent;
    });
    const Dictionary nothing;
    clsGetData(TheHost()).GetListData(Dsn(SampleFile(kOrders)), &nothing);
    TheHost().ObserveStatements({});
    return longest;
  }();
  return text;
}

/// A connection and statement as anybody would open them.
class PlainOdbc {
 public:
  PlainOdbc() {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
    SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
    std::u16string text = ToUtf16(Served().odbc());
    Check(SQLDriverConnectW(connection_, nullptr, reinterpret_cast<SQLWCHAR*>(text.data()),
                            static_cast<SQLSMALLINT>(text.size()), nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT));
    SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement_);
  }
  PlainOdbc(const PlainOdbc&) = delete;
  PlainOdbc& operator=(const PlainOdbc&) = delete;
  ~PlainOdbc() {
    SQLFreeHandle(SQL_HANDLE_STMT, statement_);
    SQLDisconnect(connection_);
    SQLFreeHandle(SQL_HANDLE_DBC, connection_);
    SQLFreeHandle(SQL_HANDLE_ENV, environment_);
  }
  [[nodiscard]] SQLHSTMT statement() const { return statement_; }

  static void Check(SQLRETURN result) {
    if (!SQL_SUCCEEDED(result)) Raise(error_number::kDatabaseFailure, "a plain ODBC call failed");
  }
  void Execute(const std::string& text) {
    std::u16string units = ToUtf16(text);
    Check(SQLExecDirectW(statement_, reinterpret_cast<SQLWCHAR*>(units.data()), static_cast<SQLINTEGER>(units.size())));
  }

 private:
  SQLHENV environment_ = nullptr;
  SQLHDBC connection_ = nullptr;
  SQLHSTMT statement_ = nullptr;
};

struct PlainColumn {
  SQLSMALLINT c_type = SQL_C_WCHAR;
  std::size_t width = 0;
  std::vector<char> values;
  std::vector<SQLLEN> lengths;
};

/// The columns of the result with C types that lose nothing.
std::vector<PlainColumn> DescribeAll(SQLHSTMT statement) {
  SQLSMALLINT count = 0;
  PlainOdbc::Check(SQLNumResultCols(statement, &count));
  std::vector<PlainColumn> columns(static_cast<std::size_t>(count));
  for (SQLSMALLINT i = 0; i < count; ++i) {
    std::array<SQLWCHAR, 256> name{};
    SQLSMALLINT type = 0;
    SQLSMALLINT name_length = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = 0;
    SQLULEN size = 0;
    PlainOdbc::Check(SQLDescribeColW(statement, static_cast<SQLUSMALLINT>(i + 1), name.data(), name.size(),
                                     &name_length, &type, &size, &digits, &nullable));
    PlainColumn& column = columns[static_cast<std::size_t>(i)];
    switch (type) {
      case SQL_BIT:
      case SQL_TINYINT:
      case SQL_SMALLINT:
      case SQL_INTEGER:
        column.c_type = SQL_C_LONG;
        column.width = sizeof(SQLINTEGER);
        break;
      case SQL_BIGINT:
        column.c_type = SQL_C_SBIGINT;
        column.width = sizeof(SQLBIGINT);
        break;
      case SQL_DECIMAL:
      case SQL_NUMERIC:
        column.c_type = SQL_C_CHAR;
        column.width = 48;
        break;
      case SQL_TYPE_TIMESTAMP:
        column.c_type = SQL_C_TYPE_TIMESTAMP;
        column.width = sizeof(SQL_TIMESTAMP_STRUCT);
        break;
      default:
        column.width = (size + 1) * sizeof(SQLWCHAR);
        break;
    }
  }
  return columns;
}

void ListOurs(benchmark::State& state) {
  const auto connection = TheHost().OpenConnection(Served().odbc());
  for (auto _ : state) benchmark::DoNotOptimize(connection->Execute(ListText())->RecordCount());
}

void ListByBlocks(benchmark::State& state) {
  constexpr std::size_t kRows = 100;
  PlainOdbc plain;
  for (auto _ : state) {
    plain.Execute(ListText());
    std::vector<PlainColumn> columns = DescribeAll(plain.statement());
    SQLULEN fetched = 0;
    SQLSetStmtAttr(plain.statement(), SQL_ATTR_ROW_ARRAY_SIZE, reinterpret_cast<SQLPOINTER>(kRows), 0);
    SQLSetStmtAttr(plain.statement(), SQL_ATTR_ROWS_FETCHED_PTR, &fetched, 0);
    for (std::size_t i = 0; i < columns.size(); ++i) {
      PlainColumn& column = columns[i];
      column.values.resize(column.width * kRows);
      column.lengths.resize(kRows);
      PlainOdbc::Check(SQLBindCol(plain.statement(), static_cast<SQLUSMALLINT>(i + 1), column.c_type,
                                  column.values.data(), static_cast<SQLLEN>(column.width), column.lengths.data()));
    }
    std::string values;
    while (SQLFetch(plain.statement()) != SQL_NO_DATA) {
      for (std::size_t row = 0; row < fetched; ++row) {
        for (const PlainColumn& column : columns) {
          const SQLLEN length = column.lengths[row];
          if (length > 0) values.append(&column.values[row * column.width], static_cast<std::size_t>(length));
        }
      }
    }
    benchmark::DoNotOptimize(values.size());
    SQLFreeStmt(plain.statement(), SQL_CLOSE);
    SQLFreeStmt(plain.statement(), SQL_UNBIND);
  }
}

void ListByGetData(benchmark::State& state) {
  PlainOdbc plain;
  std::vector<char> value(16384);
  for (auto _ : state) {
    plain.Execute(ListText());
    const std::vector<PlainColumn> columns = DescribeAll(plain.statement());
    std::string values;
    while (SQLFetch(plain.statement()) != SQL_NO_DATA) {
      for (std::size_t i = 0; i < columns.size(); ++i) {
        SQLLEN length = 0;
        SQLGetData(plain.statement(), static_cast<SQLUSMALLINT>(i + 1), columns[i].c_type, value.data(),
                   static_cast<SQLLEN>(value.size()), &length);
        if (length > 0) values.append(value.data(), static_cast<std::size_t>(length));
      }
    }
    benchmark::DoNotOptimize(values.size());
    SQLFreeStmt(plain.statement(), SQL_CLOSE);
  }
}

void SmallOurs(benchmark::State& state) {
  const std::string dsn = "Connect={" + ReplaceAll(Served().odbc(), "}", "}}") + "};User=16394";
  for (auto _ : state) {
    const auto session = SessionFactory::ForThisThread(TheHost()).NewSession();
    session->OpenSession(dsn);
    benchmark::DoNotOptimize(session->GetConnection().Execute(kSmall));
  }
  TheHost().CloseIdle();
}

void SmallAgainst(benchmark::State& state) {
  PlainOdbc plain;
  for (auto _ : state) {
    plain.Execute(kSmall);
    SQLINTEGER flag = 0;
    SQLLEN length = 0;
    SQLBindCol(plain.statement(), 1, SQL_C_LONG, &flag, sizeof flag, &length);
    while (SQLFetch(plain.statement()) != SQL_NO_DATA) benchmark::DoNotOptimize(flag);
    SQLFreeStmt(plain.statement(), SQL_CLOSE);
  }
}

}  // namespace

void AddOdbcBenchmarks() {
  AddOdbcDriver(TheHost());
  AddRatio("100,000 orders over ODBC : plain block loop", "<= 1.15 x", ListOurs, ListByBlocks);
  AddRatio("100,000 orders over ODBC : plain SQLGetData loop", "<= 0.5 x", ListOurs, ListByGetData);
  AddRatio("one small read over ODBC, session and all : SQLExecDirect", "<= 1.2 x", SmallOurs, SmallAgainst);
}

}  // namespace tessarlorn::bench

#else

namespace tessarlorn::bench {

void AddOdbcBenchmarks() {}

}  // namespace tessarlorn::bench

#endif
