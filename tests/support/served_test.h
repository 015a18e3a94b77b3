// Tests over ODBC on a served database.
#pragma once

#include <gtest/gtest.h>

#include "support/served_database.h"

namespace tessarlorn {

class ServedTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_FALSE(FreeTdsDriver().empty()) << "the ODBC driver of FreeTDS (package tdsodbc) is not installed";
  }
  /// One server for all tests of the process that do not end it.
  static ServedDatabase& Shared() {
    static ServedDatabase database;
    return database;
  }
};

}  // namespace tessarlorn
