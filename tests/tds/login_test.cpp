#include "hosts/tds/messages/login.h"

#include <gtest/gtest.h>

#include "tds/tds_support.h"

namespace tessarlorn::tds {
namespace {

TEST(Login, ReadsWhatClientsSay) {
  LoginWords words;
  words.user = "安娜";
  words.password = "p😀'ss";
  words.database = "main";
  words.packet_size = 100'000;
  const Login login = ReadLogin(LoginPayload(words));
  EXPECT_EQ(login.user, "安娜");
  EXPECT_EQ(login.password, "p😀'ss");
  EXPECT_EQ(login.database, "main");
  EXPECT_EQ(login.host, "host");
  EXPECT_EQ(login.application, "test");
  EXPECT_EQ(login.version.number(), TdsVersion().number());
  EXPECT_EQ(login.packet_size, kLargestPacket);
  EXPECT_FALSE(login.integrated);
}

TEST(Login, RefusesEveryCutOrShiftedRecord) {
  const std::string good = LoginPayload({});
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_THROW((void)ReadLogin(good.substr(0, size)), ProtocolError) << size;
  }
  // Offset and length of the user's name, pointing outside.
  for (const std::size_t at : {std::size_t{40}, std::size_t{42}}) {
    std::string bad = good;
    bad[at + 1] = static_cast<char>(0xff);
    EXPECT_THROW((void)ReadLogin(bad), ProtocolError) << at;
  }
}

TEST(Login, AsksForEncryptionAsItsClientsDo) {
  for (const std::uint8_t wanted : {0, 1, 2, 3}) {
    const std::string payload = Payload(PreLoginMessage(wanted));
    EXPECT_EQ(ReadPreLogin(payload), static_cast<Encryption>(wanted));
    for (std::size_t size = 0; size < payload.size(); ++size) {
      EXPECT_THROW((void)ReadPreLogin(std::string_view(payload).substr(0, size)), ProtocolError) << size;
    }
  }
  TdsWriter writer;
  WritePreLogin(writer, Encryption::kRequired);
  EXPECT_EQ(ReadPreLogin(writer.bytes()), Encryption::kRequired);
  EXPECT_THROW((void)ReadPreLogin(Payload(PreLoginMessage(9))), ProtocolError);
}

}  // namespace
}  // namespace tessarlorn::tds
