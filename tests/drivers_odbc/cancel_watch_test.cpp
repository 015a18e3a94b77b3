#include "drivers/odbc/cancel_watch.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

#include "drivers/odbc/odbc_link.h"
#include "platform/error.h"
#include "support/served_test.h"

namespace tessarlorn::odbc {
namespace {

class CancelWatchTest : public ServedTest {};

class Nobody final : public BatchSink {
 public:
  void Rows(RecordsetPtr) override {}
};

TEST_F(CancelWatchTest, ARequestThatComesBeforeTheStatementRunsMeetsIt) {
  OdbcLink link(ParseConnectionOptions(Shared().odbc()));
  const auto state = CancelState::Make();
  state->Request();
  EXPECT_FALSE(state->requested()) << "there was no call";
  {
    const CancellableCall call(*state);
    state->Request();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const RunningStatement running(*state, link.statement());
    Nobody nobody;
    try {
      SqlCommand wait("waitfor delay '00:01:00'");
      link.Run(wait, true, false, nobody);
      ADD_FAILURE() << "not cancelled";
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), error_number::kCancelled);
    }
  }
  EXPECT_FALSE(state->requested()) << "it ends with its call";
}

}  // namespace
}  // namespace tessarlorn::odbc
