#include "drivers/ado/ado_error.h"

#include <string>
#include <utility>

#include "com_base/errors.h"
#include "com_base/pointers.h"
#include "platform/server_messages.h"

namespace tessarlorn::ado {
namespace {

/// A member of ADO that answers a text, which it lets go; "" when it fails.
template <typename Object>
std::string TextOf(Object& object, HRESULT (STDMETHODCALLTYPE Object::*get)(BSTR*)) {
  com::OwnedBstr text;
  return FAILED((object.*get)(text.Receive())) ? std::string() : com::ToText(text.get());
}

template <typename Object>
LONG NumberOf(Object& object, HRESULT (STDMETHODCALLTYPE Object::*get)(LONG*)) {
  LONG number = 0;
  return FAILED((object.*get)(&number)) ? 0 : number;
}

Error ToError(IAdoError& error) {
  NativeError native;
  native.number = NumberOf(error, &IAdoError::get_NativeError);
  native.sqlstate = TextOf(error, &IAdoError::get_SQLState);
  return {com::ToNumber(NumberOf(error, &IAdoError::get_Number)), TextOf(error, &IAdoError::get_Source),
          TextOf(error, &IAdoError::get_Description), std::move(native)};
}

/// All that the provider said in the last call, oldest first.
std::vector<Error> TakeErrors(IAdoConnection* connection) {
  std::vector<Error> taken;
  com::Pointer<IAdoErrors> errors;
  if (connection == nullptr || FAILED(connection->get_Errors(errors.Receive())) || !errors) return taken;
  LONG count = 0;
  if (FAILED(errors->get_Count(&count))) return taken;
  for (LONG i = 0; i < count; ++i) {
    VARIANT index{};
    index.vt = VT_I4;
    index.lVal = i;
    com::Pointer<IAdoError> error;
    if (SUCCEEDED(errors->get_Item(index, error.Receive())) && error) taken.push_back(ToError(*error.get()));
  }
  if (count > 0) errors->Clear();
  return taken;
}

/// Failures have negative numbers, as every HRESULT of one.
bool IsMessage(const Error& error) { return error.number() >= 0; }

/// For what ADO says nothing of.
std::string WordsOf(HRESULT status) {
  const bool no_provider = status == CO_E_CLASSSTRING || status == REGDB_E_CLASSNOTREG;
  return no_provider ? "Provider cannot be found. It may not be properly installed." : com::SystemText(status);
}

/// What the thread's error object says.
Error FromErrorObject(HRESULT status, std::string_view what) {
  std::string source;
  std::string description;
  com::Pointer<IErrorInfo> info;
  if (GetErrorInfo(0, info.Receive()) == S_OK && info) {
    source = TextOf(*info.get(), &IErrorInfo::GetSource);
    description = TextOf(*info.get(), &IErrorInfo::GetDescription);
  }
  if (description.empty()) description = "ADO: " + std::string(what) + " failed: " + WordsOf(status);
  return {com::ToNumber(status), source.empty() ? kSource : source, description};
}

}  // namespace

Report ReportOf(HRESULT status, IAdoConnection* connection, std::string_view what) {
  Report report;
  // Read first: every further call of ADO may change it.
  if (FAILED(status)) report.failure = FromErrorObject(status, what);
  for (Error& said : TakeErrors(connection)) {
    if (said.native().number == server_message::kStatementTerminated.number) continue;
    if (IsMessage(said)) {
      report.messages.push_back(std::move(said));
    } else if (FAILED(status)) {
      report.failure = std::move(said);
      break;
    }
  }
  return report;
}

void Check(HRESULT status, IAdoConnection* connection, std::string_view what) {
  if (FAILED(status)) throw Error(*ReportOf(status, connection, what).failure);
}

bool IsConnectionLost(const Error& error) { return error.native().sqlstate.starts_with("08"); }

}  // namespace tessarlorn::ado
