#include "hosts/tds/messages/login.h"

#include <algorithm>

#include "hosts/tds/messages/tds_reader.h"

namespace tessarlorn::tds {
namespace {

enum class PreLoginOption : std::uint8_t { kVersion = 0, kEncryption = 1, kInstance = 2, kThread = 3, kMars = 4 };
constexpr std::uint8_t kPreLoginEnd = 0xff;

// The version that clients read features from: that of a server that knows TDS 7.4 and no more.
constexpr std::uint8_t kMajorVersion = 11;
constexpr std::uint16_t kBuild = 7001;

/// That of all messages, whatever a client asks for.
constexpr const char* kLanguage = "us_english";

std::uint16_t BigEndian16(TdsReader& reader) {
  const std::uint16_t high = reader.U8();
  return static_cast<std::uint16_t>((high << 8) | reader.U8());
}

/// A field of the login record that stands at an offset and has a length in units.
class LoginFields {
 public:
  explicit LoginFields(std::string_view payload) : payload_(payload) {}

  [[nodiscard]] std::string_view Bytes(TdsReader& reader) const {
    const std::size_t offset = reader.U16();
    const std::size_t size = std::size_t{reader.U16()} * 2;
    if (size == 0) return {};
    if (offset > payload_.size() || size > payload_.size() - offset) {
      throw ProtocolError("a field of the login lies outside of it");
    }
    return payload_.substr(offset, size);
  }
  [[nodiscard]] std::string Text(TdsReader& reader) const { return TextOfUtf16Bytes(Bytes(reader)); }
  /// The password's bytes have their halves exchanged and are XORed with A5.
  [[nodiscard]] std::string Password(TdsReader& reader) const {
    std::string plain(Bytes(reader));
    for (char& byte : plain) {
      const auto mixed = static_cast<std::uint8_t>(static_cast<std::uint8_t>(byte) ^ 0xA5U);
      byte = static_cast<char>((mixed << 4) | (mixed >> 4));
    }
    return TextOfUtf16Bytes(plain);
  }

 private:
  std::string_view payload_;
};

}  // namespace

Encryption ReadPreLogin(std::string_view payload) {
  TdsReader reader(payload);
  Encryption wanted = Encryption::kOff;
  while (reader.Peek() != kPreLoginEnd) {
    const auto option = static_cast<PreLoginOption>(reader.U8());
    const std::size_t offset = BigEndian16(reader);
    const std::size_t size = BigEndian16(reader);
    if (offset > payload.size() || size > payload.size() - offset) {
      throw ProtocolError("an option of the pre-login lies outside of it");
    }
    if (option != PreLoginOption::kEncryption) continue;
    if (size != 1) throw ProtocolError("the pre-login's option of encryption has no byte");
    const auto value = static_cast<std::uint8_t>(payload[offset]);
    if (value > static_cast<std::uint8_t>(Encryption::kRequired)) {
      throw ProtocolError("the pre-login wants an unknown kind of encryption");
    }
    wanted = static_cast<Encryption>(value);
  }
  return wanted;
}

void WritePreLogin(TdsWriter& writer, Encryption answer) {
  TdsWriter values;
  const auto big_endian = [](TdsWriter& out, std::size_t value) {
    out.U8(static_cast<std::uint8_t>(value >> 8));
    out.U8(static_cast<std::uint8_t>(value & 0xff));
  };
  constexpr std::size_t kOptions = 5;
  constexpr std::size_t kHeadSize = kOptions * 5 + 1;
  const auto option = [&](PreLoginOption kind, std::size_t size) {
    writer.U8(static_cast<std::uint8_t>(kind));
    big_endian(writer, kHeadSize + values.size());
    big_endian(writer, size);
  };
  option(PreLoginOption::kVersion, 6);
  values.U8(kMajorVersion);
  values.U8(0);
  big_endian(values, kBuild);
  values.U16(0);
  option(PreLoginOption::kEncryption, 1);
  values.U8(static_cast<std::uint8_t>(answer));
  option(PreLoginOption::kInstance, 1);
  values.U8(0);
  option(PreLoginOption::kThread, 0);
  option(PreLoginOption::kMars, 1);
  values.U8(0);
  writer.U8(kPreLoginEnd);
  writer.Bytes(values.bytes());
}

Login ReadLogin(std::string_view payload) {
  TdsReader reader(payload);
  if (reader.U32() != payload.size()) throw ProtocolError("the login's length is not that of its message");
  Login login;
  login.version = TdsVersion(reader.U32());
  const std::uint32_t wanted = reader.U32();
  if (wanted != 0) login.packet_size = std::clamp<std::size_t>(wanted, kSmallestPacket, kLargestPacket);
  reader.Skip(12);  // version of the program, process, connection
  reader.Skip(1);
  const std::uint8_t flags = reader.U8();
  constexpr std::uint8_t kIntegrated = 0x80;
  login.integrated = (flags & kIntegrated) != 0;
  reader.Skip(10);  // flags of the type, more flags, time zone, locale
  const LoginFields fields(payload);
  login.host = fields.Text(reader);
  login.user = fields.Text(reader);
  login.password = fields.Password(reader);
  login.application = fields.Text(reader);
  reader.Skip(12);  // server; extensions, of which none is taken up; client library
  reader.Skip(4);   // language: there is one only
  login.database = fields.Text(reader);
  return login;
}

void WriteOldRefusal(TdsWriter& writer, std::string_view text) {
  writer.Put(Token::kError);
  const std::string_view server = kServerName;
  writer.U16(static_cast<std::uint16_t>(4 + 1 + 1 + 2 + text.size() + 1 + server.size() + 1 + 2));
  writer.U32(kOldVersion);
  writer.U8(1);
  writer.U8(kOldVersionSeverity);
  writer.U16(static_cast<std::uint16_t>(text.size()));
  writer.Bytes(text);
  writer.U8(static_cast<std::uint8_t>(server.size()));
  writer.Bytes(server);
  writer.U8(0);  // no procedure
  writer.U16(1);
  writer.Put(Done{Token::kDone, kDoneError, 0, 0});
}

void WriteLoginAnswer(TdsWriter& writer, const Login& login) {
  const auto tell = [&](std::int32_t number, const std::string& text) {
    writer.Put(ServerMessage{number, 1, 0, 1, text});
  };
  writer.PutEnvironment(Environment::kDatabase, kDatabaseName, "");
  tell(5701, std::string("Changed database context to '") + kDatabaseName + "'.");
  writer.PutEnvironmentBytes(Environment::kCollation, CollationFor(login.version), "");
  writer.PutEnvironment(Environment::kLanguage, kLanguage, "");
  tell(5703, std::string("Changed language setting to ") + kLanguage + ".");
  writer.Put(Token::kLoginAck);
  const std::size_t start = writer.size();
  writer.U16(0);
  writer.U8(1);  // the language is Transact-SQL
  // The first form of 7.1 is acknowledged with its number turned round.
  constexpr std::uint32_t kFirst71 = 0x71000000;
  const std::uint32_t asked = login.version.number();
  const std::uint32_t version = asked == kFirst71 ? 0x07010000 : std::min(asked, TdsVersion().number());
  for (int shift = 24; shift >= 0; shift -= 8) writer.U8(static_cast<std::uint8_t>((version >> shift) & 0xff));
  writer.ShortText(kServerName);
  writer.U8(kMajorVersion);
  writer.U8(0);
  writer.U8(static_cast<std::uint8_t>(kBuild >> 8));
  writer.U8(static_cast<std::uint8_t>(kBuild & 0xff));
  writer.SetU16(start, static_cast<std::uint16_t>(writer.size() - start - 2));
  writer.PutEnvironment(Environment::kPacketSize, std::to_string(login.packet_size), std::to_string(kDefaultPacket));
}

}  // namespace tessarlorn::tds
