// The one way in which an operation reaches the database: session, connection, and errors under its own Source.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <type_traits>

#include "frame/text_builder.h"
#include "tessarlorn/contract.h"
#include "tessarlorn/error.h"
#include "tessarlorn/session.h"

namespace tessarlorn {

/// What an instance of either service class holds between calls; the frame replaces both.
struct InstanceState {
  Host& host;
  SessionContext& context;
  std::shared_ptr<DataSession>& session;
};

/// Whether the session of the call before is reset before the new one is opened. Without, its connection is given back
/// only when the new session is open.
enum class OldSession : std::uint8_t { kReset, kKeep };

/// Opens a new session for `dsn` in place of the instance's. Raises what DataSession::OpenSession raises; the instance
/// then holds the new, unopened session.
void OpenSession(InstanceState instance, std::string_view dsn);

/// To be called while an exception is handled: raises it as an Error with `source`. An Error keeps its number,
/// description and native error; out of memory is 7, any other exception 51.
[[noreturn]] void RaiseFromHandler(std::string_view source);

/// Answers what `body()` answers; whatever it raises comes out as one Error with `source`.
template <typename Body>
auto UnderSource(std::string_view source, const Body& body) {
  try {
    return body();
  } catch (...) {
    RaiseFromHandler(source);
  }
}

/// Runs an operation: `body(Connection&)` on a new session of the instance; answers what it answers. Whatever is
/// raised comes out as one Error with the contract's Source. Nothing is rolled back, and the session stays open for the
/// instance.
template <typename Body>
auto CallOperation(InstanceState instance, const Contract& contract, std::string_view dsn, const Body& body,
                   OldSession old_session = OldSession::kReset) {
  return UnderSource(contract.source, [&] {
    if (old_session == OldSession::kReset) instance.session->Reset();
    OpenSession(instance, dsn);
    const EscapeTexts escape(instance.context.escapes_texts());
    return body(instance.session->GetConnection());
  });
}

/// The same for an operation whose first arguments are texts, the connection string before all: when one is empty that
/// the contract says is mandatory, nothing is done, and the answer is empty.
template <typename Body>
auto CallForTexts(InstanceState instance, const Contract& contract, std::initializer_list<std::string_view> texts,
                  const Body& body, OldSession old_session = OldSession::kReset)
    -> std::invoke_result_t<Body, Connection&> {
  const ArgumentContract* argument = contract.arguments.begin();
  for (const std::string_view text : texts) {
    if ((argument++)->need == Need::kMandatory && text.empty()) return {};
  }
  return CallOperation(instance, contract, *texts.begin(), body, old_session);
}

/// The same for an operation that raises nothing: its answer is empty when it fails.
template <typename Body>
auto CallQuietly(InstanceState instance, const Contract& contract, std::string_view dsn, const Body& body)
    -> std::invoke_result_t<Body, Connection&> {
  try {
    return CallForTexts(instance, contract, {dsn}, body);
  } catch (const Error&) {
    return {};
  }
}

}  // namespace tessarlorn
