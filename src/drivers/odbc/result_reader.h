// Reads the result that stands on a statement into a Recordset: blocks of rows into bound buffers, long columns apart.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "drivers/odbc/odbc_handle.h"
#include "platform/recordset_builder.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn::odbc {

/// Looks at what a call on the statement answered: reports messages, and raises what is an error. Answers the result.
using CheckResult = std::function<SQLRETURN(SQLRETURN)>;

/// Makes recordsets of the results of one statement, one after the other; its buffers serve again.
class ResultReader {
 public:
  /// Both must outlive the reader.
  ResultReader(SQLHSTMT statement, const CheckResult& check) : statement_(statement), check_(check) {}
  ResultReader(const ResultReader&) = delete;
  ResultReader& operator=(const ResultReader&) = delete;

  /// Puts the rows of the current result into `rows`, those before the last ones into the sink when it takes parts.
  /// Raises what `check` raises, and 0x80040E57 for a value that is longer than its column says; `rows` then has what
  /// came before, or is nullptr. An ODBC driver that looks ahead raises the error of the next statement here already.
  /// @param one_by_one every row on its own, so that no message behind the rows is lost in a block
  void Read(SQLSMALLINT columns, bool one_by_one, BatchSink& sink, RecordsetPtr& rows);

 private:
  /// What a column's value comes as, and what becomes of it.
  enum class Transfer : std::uint8_t {
    kInteger,
    kBigInteger,
    kDouble,
    kDecimal,    // text of digits
    kTimestamp,  // date, time or both
    kText,       // UTF-16
    kPlainText,  // ASCII
    kBinary,
  };
  struct Column {
    Field field;
    Transfer transfer = Transfer::kText;
    SQLSMALLINT c_type = SQL_C_WCHAR;
    /// Bytes of a value in the buffer, with the end mark of a text.
    std::size_t width = 0;
    /// Of its length indicator in the row; the value stands behind it.
    std::size_t offset = 0;
    bool is_long = false;
  };

  Column Describe(SQLUSMALLINT number);
  [[nodiscard]] bool IsMoney(SQLUSMALLINT number);
  void Bind(std::size_t bound, bool one_by_one);
  void ReadBlocks(RecordsetBuilder& rows, BatchSink& sink);
  void AppendBlock(RecordsetBuilder& rows, std::size_t count);
  void ReadRowByRow(RecordsetBuilder& rows, std::size_t bound, BatchSink& sink);
  void AppendBound(RecordsetBuilder& rows, const Column& column, const std::uint8_t* cell);
  void AppendLong(RecordsetBuilder& rows, SQLUSMALLINT number);
  /// @param size in bytes
  void Append(RecordsetBuilder& rows, const Column& column, const std::uint8_t* value, std::size_t size);
  void AppendNumber(RecordsetBuilder& rows, const Column& column, std::string_view digits);

  SQLHSTMT statement_;
  const CheckResult& check_;
  std::vector<Column> columns_;
  std::size_t row_size_ = 0;
  /// In words of 8 bytes; never filled, as most of it is never touched.
  std::unique_ptr<std::uint64_t[]> buffer_;
  std::size_t buffer_words_ = 0;
  std::vector<std::uint8_t> long_value_;
  std::string text_;
  SQLULEN fetched_ = 0;
  std::vector<SQLUSMALLINT> row_states_;
  bool in_row_ = false;
};

}  // namespace tessarlorn::odbc
