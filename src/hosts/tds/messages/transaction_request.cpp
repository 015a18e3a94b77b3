#include "hosts/tds/messages/transaction_request.h"

#include <array>

#include "hosts/tds/messages/refusal.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

enum class Request : std::uint16_t { kBegin = 5, kCommit = 7, kRollback = 8, kSave = 9 };

/// Level 0 leaves it as it is.
std::string IsolationText(std::uint8_t level) {
  constexpr std::array kLevels = {"",        "READ UNCOMMITTED", "READ COMMITTED", "REPEATABLE READ", "SERIALIZABLE",
                                  "SNAPSHOT"};
  if (level >= kLevels.size()) throw ProtocolError("an unknown isolation level");
  if (level == 0) return "";
  return std::string("SET TRANSACTION ISOLATION LEVEL ") + kLevels[level] + "\n";
}

/// A name in brackets with a blank before it, "" when there is none. Its length is given in bytes.
std::string NameText(TdsReader& reader) {
  const std::string name = TextOfUtf16Bytes(reader.Bytes(reader.U8()));
  return name.empty() ? name : " " + Quoted(name, '[', ']');
}

std::string BeginText(TdsReader& reader) {
  std::string text = IsolationText(reader.U8());
  return text + "BEGIN TRANSACTION" + NameText(reader);
}

}  // namespace

void SkipHeaders(TdsReader& reader, TdsVersion version) {
  if (!version.is_72()) return;
  const std::size_t size = reader.U32();
  if (size < 4) throw ProtocolError("a request's headers are too short");
  reader.Skip(size - 4);
}

std::string TransactionRequestText(TdsReader& reader) {
  switch (const auto request = static_cast<Request>(reader.U16())) {
    case Request::kBegin:
      return BeginText(reader);
    case Request::kSave:
      return "SAVE TRANSACTION" + NameText(reader);
    case Request::kCommit:
    case Request::kRollback: {
      const bool commit = request == Request::kCommit;
      const std::string name = NameText(reader);
      // The name of a commit says nothing; that of a rollback may be a save point's.
      std::string text = commit ? "COMMIT TRANSACTION" : "IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION" + name;
      constexpr std::uint8_t kBeginNext = 1;
      if (!reader.at_end() && (reader.U8() & kBeginNext) != 0) text += "\n" + BeginText(reader);
      return text;
    }
    default:
      RaiseNotSupported("Distributed transactions are not supported.");
  }
}

}  // namespace tessarlorn::tds
