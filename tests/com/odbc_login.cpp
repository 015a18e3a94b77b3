// An ODBC driver of the building machine in front of FreeTDS: Wine's OLE DB provider for ODBC names a data source and
// nothing else, so that user and password have to come from here. Everything but the login is FreeTDS's own.
#include <cstdlib>
#include <dlfcn.h>
#include <sql.h>
#include <sqlext.h>
#include <string>

/// Logs in to the data source with TESSARLORN_ODBC_USER and TESSARLORN_ODBC_PASSWORD.
extern "C" SQLRETURN SQLConnectW(SQLHDBC connection, SQLWCHAR* name, SQLSMALLINT length, SQLWCHAR*, SQLSMALLINT,
                                 SQLWCHAR*, SQLSMALLINT) {
  using Connect = SQLRETURN (*)(SQLHDBC, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT);
  void* const driver = dlopen(TESSARLORN_FREETDS, RTLD_NOW);
  const char* const user = std::getenv("TESSARLORN_ODBC_USER");
  const char* const password = std::getenv("TESSARLORN_ODBC_PASSWORD");
  if (driver == nullptr || user == nullptr || password == nullptr) return SQL_ERROR;
  const auto connect = reinterpret_cast<Connect>(dlsym(driver, "SQLConnectW"));
  const auto wide = [](const std::string& text) { return std::basic_string<SQLWCHAR>(text.begin(), text.end()); };
  std::basic_string<SQLWCHAR> texts[] = {wide(user), wide(password)};
  return connect(connection, name, length, texts[0].data(), SQL_NTS, texts[1].data(), SQL_NTS);
}
