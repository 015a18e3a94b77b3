#include "drivers/odbc/cancel_watch.h"

#include <gtest/gtest.h>

#include "drivers/odbc/odbc_link.h"
#include "support/error_of.h"
#include "support/served_database.h"
#include "tessarlorn/error.h"

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
    const RunningStatement running(*state, link.statement());
    Nobody nobody;
    SqlCommand wait("waitfor delay '00:01:00'");
    const Error error = ErrorOf([&] { link.Run(wait, true, false, nobody); });
    EXPECT_EQ(error.number(), error_number::kCancelled);
  }
  EXPECT_FALSE(state->requested()) << "it ends with its call";
}

}  // namespace
}  // namespace tessarlorn::odbc
