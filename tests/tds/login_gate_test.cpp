#include "hosts/tds/login_gate.h"

#include <gtest/gtest.h>

namespace tessarlorn::tds {
namespace {

TEST(LoginGate, FailuresDelayTheirUserAndTheirAddressOnly) {
  LoginGate gate;
  const auto now = LoginGate::Clock::now();
  const auto delay = [&](const char* user, const char* address) { return gate.Delay(user, address, now).count(); };
  for (int i = 0; i < 3; ++i) gate.NoteFailure("ann", "a1", now);
  EXPECT_EQ(delay("ann", "a1"), 0);
  gate.NoteFailure("ann", "a1", now);
  gate.NoteFailure("Ann", "a2", now);
  EXPECT_EQ(delay("ANN", "a9"), 500);
  EXPECT_EQ(delay("bob", "a1"), 250);
  EXPECT_EQ(delay("bob", "a2"), 0);
  for (int i = 0; i < 100; ++i) gate.NoteFailure("ann", "a1", now);
  EXPECT_EQ(delay("ann", "a1"), 5000);
  gate.NoteSuccess("ann");
  EXPECT_EQ(delay("ann", "a2"), 0);
  EXPECT_EQ(gate.Delay("ann", "a1", now + std::chrono::minutes(11)).count(), 0);
  // Ever new names push out none but the oldest.
  for (int i = 0; i < 4200; ++i) gate.NoteFailure("x" + std::to_string(i), "a1", now + std::chrono::milliseconds(i));
  EXPECT_EQ(delay("bob", "a1"), 5000);
}

TEST(LoginGate, TellsOfFewLoginsAndHowManyItLeftOut) {
  LoginGate gate;
  const auto now = LoginGate::Clock::now();
  std::size_t said = 0;
  for (int i = 0; i < 50; ++i) said += gate.Line("refused", now) ? 1 : 0;
  EXPECT_EQ(said, 20U);
  EXPECT_EQ(gate.Line("again", now + std::chrono::seconds(11)),
            "again (30 lines of refused logins before were left out)");
}

}  // namespace
}  // namespace tessarlorn::tds
