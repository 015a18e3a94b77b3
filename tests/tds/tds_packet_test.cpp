#include "hosts/tds/transport/tds_packet.h"

#include <gtest/gtest.h>
#include <string>

#include "tds/tds_support.h"

namespace tessarlorn::tds {
namespace {

TEST(TdsPacket, PutsMessagesTogetherFromAnyPieces) {
  const std::string text(10'000, 'x');
  const std::string bytes =
      ClientMessage(PacketType::kSqlBatch, text, kResetConnection) + ClientMessage(PacketType::kRpc, "call");
  for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, std::size_t{4096}, bytes.size()}) {
    PacketAssembler assembler(20'000);
    std::vector<Message> messages;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
      assembler.Feed(std::string_view(bytes).substr(at, piece));
      while (auto message = assembler.Next()) messages.push_back(*message);
    }
    ASSERT_EQ(messages.size(), 2U) << piece;
    EXPECT_EQ(messages[0].payload, text);
    EXPECT_EQ(messages[0].status & kResetConnection, kResetConnection);
    EXPECT_EQ(messages[1].type, PacketType::kRpc);
    EXPECT_EQ(messages[1].payload, "call");
    EXPECT_EQ(assembler.waiting(), 0U);
  }
}

TEST(TdsPacket, CutsMessagesIntoFullPackets) {
  std::string packets;
  std::uint8_t number = 0;
  AppendPackets(packets, PacketType::kReply, std::string(1000, 'a'), 512, false, number);
  AppendPackets(packets, PacketType::kReply, "", 512, true, number);
  ASSERT_EQ(packets.size(), 512U + 8 + 496 + 8);
  EXPECT_EQ(packets[1], 0);
  EXPECT_EQ(packets[6], 1);
  EXPECT_EQ(packets[512 + 6], 2);
  EXPECT_EQ(packets[packets.size() - 7], 1) << "the last packet ends the message";
  EXPECT_EQ(number, 0) << "the next message counts anew";
}

TEST(TdsPacket, TellsWhatBecameOfAMessage) {
  PacketAssembler assembler(1000);
  assembler.Feed(ClientMessage(PacketType::kSqlBatch, "taken back", kIgnoreMessage));
  EXPECT_EQ(assembler.Next()->fate, Fate::kTakenBack);
  assembler.Feed(ClientMessage(PacketType::kSqlBatch, std::string(10'000, 'x')));
  EXPECT_LT(assembler.waiting(), 1U + 3 * kDefaultPacket);
  const std::optional<Message> long_one = assembler.Next();
  EXPECT_EQ(long_one->fate, Fate::kTooLong);
  EXPECT_EQ(long_one->payload, "");
  // An attention ends a message of which only the beginning came.
  assembler.Feed(ClientMessage(PacketType::kSqlBatch, std::string(5'000, 'x')).substr(0, kDefaultPacket));
  assembler.Feed(ClientMessage(PacketType::kAttention, ""));
  EXPECT_TRUE(assembler.TakeAttention());
  EXPECT_FALSE(assembler.TakeAttention());
  assembler.Feed(ClientMessage(PacketType::kRpc, "next"));
  EXPECT_FALSE(assembler.TakeAttention());
  EXPECT_EQ(assembler.Next()->payload, "next");
}

TEST(TdsPacket, RefusesWhatIsNoPacketBeforeItTakesMemory) {
  const auto packet = [](int type, int size) {
    return std::string{
        static_cast<char>(type), 0, static_cast<char>(size >> 8), static_cast<char>(size & 0xff), 0, 0, 1, 0};
  };
  for (const std::string& bytes :
       {packet(5, 8), packet(0x47, 100), packet(1, 7), packet(1, 0xffff), packet(1, 8) + packet(3, 8)}) {
    PacketAssembler assembler(1000);
    assembler.Feed(bytes);
    EXPECT_THROW((void)assembler.Next(), ProtocolError);
  }
}

}  // namespace
}  // namespace tessarlorn::tds
