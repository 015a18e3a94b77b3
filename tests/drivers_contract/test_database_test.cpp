// A database on a server is dropped whatever happens behind it, as nobody else would.
#include "support/test_database.h"

#include <cstdlib>
#include <gmock/gmock.h>

#include "support/recording_driver.h"
#include "support/sample_database.h"

namespace tessarlorn {
namespace {

using testing::HasSubstr;

class TestDatabaseTest : public RecordingTest {
 protected:
  TestDatabaseTest() {
    if (TestServer() != nullptr) before_ = TestServer();
    setenv("TESSARLORN_TEST_DSN", "Recording=a;database=master;PWD={a;b}", 1);
  }
  ~TestDatabaseTest() override {
    if (before_.empty()) {
      unsetenv("TESSARLORN_TEST_DSN");
    } else {
      setenv("TESSARLORN_TEST_DSN", before_.c_str(), 1);
    }
  }

 private:
  std::string before_;
};

TEST_F(TestDatabaseTest, IsDroppedWhenTheSchemaCannotBeMade) {
  TheRecording().answer = [](std::string_view text) -> RecordsetPtr {
    if (text.find("DATABASE") == std::string_view::npos) Raise(error_number::kStatementError, "no schema");
    return nullptr;
  };
  EXPECT_THROW(SampleDatabase(), Error);
  ASSERT_GE(Events().size(), 4U);
  EXPECT_THAT(Events()[1], HasSubstr("CREATE DATABASE tessarlorn_test_"));
  EXPECT_THAT(Events().back(), HasSubstr("DROP DATABASE tessarlorn_test_"));
}

TEST_F(TestDatabaseTest, WhatWasNotMadeIsNotDroppedAndTheErrorIsTheServers) {
  TheRecording().answer = [](std::string_view) -> RecordsetPtr { Raise(error_number::kPermissionDenied, "not you"); };
  EXPECT_EQ(Raised([] { const SampleDatabase database; }).substr(0, 11),
            std::to_string(error_number::kPermissionDenied));
  EXPECT_EQ(Events().size(), 2U);
}

TEST_F(TestDatabaseTest, TakesThePlaceOfTheStringsOwnDatabase) {
  const TestDatabase database(Reach::kServer);
  EXPECT_THAT(database.string(), testing::StartsWith("Recording={a};PWD={a;b};Database=tessarlorn_test_"));
}

}  // namespace
}  // namespace tessarlorn
