#include "com_base/errors.h"

#include <array>
#include <cstdio>

#include "com_base/pointers.h"
#include "platform/handled_error.h"

namespace tessarlorn::com {
namespace {

constexpr std::uint32_t kControlFacility = 0x800A0000U;
constexpr std::uint32_t kFacilityMask = 0xffff0000U;
constexpr std::int32_t kMostSmall = 0xffff;

/// "0x80004005"
std::string HexadecimalText(HRESULT result) {
  std::array<char, 11> text{};
  std::snprintf(text.data(), text.size(), "0x%08lX", static_cast<unsigned long>(result));
  return text.data();
}

}  // namespace

HRESULT ToHresult(std::int32_t number) {
  if (number <= 0 || number > kMostSmall) return number;
  return static_cast<HRESULT>(kControlFacility | static_cast<std::uint32_t>(number));
}

std::int32_t ToNumber(HRESULT result) {
  const auto bits = static_cast<std::uint32_t>(result);
  if ((bits & kFacilityMask) == kControlFacility) return static_cast<std::int32_t>(bits & ~kFacilityMask);
  switch (result) {
    case DISP_E_MEMBERNOTFOUND:
    case DISP_E_UNKNOWNNAME:
      return error_number::kNoSuchMember;
    case DISP_E_TYPEMISMATCH:
      return error_number::kTypeMismatch;
    case DISP_E_OVERFLOW:
      return error_number::kOverflow;
    case DISP_E_BADPARAMCOUNT:
      return error_number::kWrongArgumentCount;
    case DISP_E_PARAMNOTOPTIONAL:
      return error_number::kArgumentNotOptional;
    case E_OUTOFMEMORY:
      return error_number::kOutOfMemory;
    default:
      return result;
  }
}

std::string SystemText(HRESULT result) {
  std::array<wchar_t, 512> text{};
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(result), 0,
                     text.data(), static_cast<DWORD>(text.size()), nullptr);
  const std::string said = FromUtf16({reinterpret_cast<const char16_t*>(text.data()), length});
  const std::size_t end = said.find_last_not_of(" \r\n");
  return end == std::string::npos ? HexadecimalText(result) : said.substr(0, end + 1);
}

/// For who gave no EXCEPINFO. Who did has all of it there; with the thread it would stay, and show up as the error of
/// the next object that says nothing.
void LeaveWithThread(const Error& error) {
  Pointer<ICreateErrorInfo> made;
  if (FAILED(CreateErrorInfo(made.Receive()))) return;
  OwnedBstr source(error.source());
  OwnedBstr description(error.what());
  made->SetGUID(IID_IDispatch);
  made->SetSource(source.get());
  made->SetDescription(description.get());
  if (const auto info = Query<IErrorInfo>(made.get())) SetErrorInfo(0, info.get());
}

HRESULT CurrentStatus() noexcept {
  try {
    return ToHresult(HandledError().number());
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

HRESULT ReportCurrent(EXCEPINFO* info) noexcept {
  try {
    const Error error = HandledError();
    if (info != nullptr) {
      *info = {};
      info->scode = ToHresult(error.number());
      info->bstrSource = NewBstr(error.source());
      info->bstrDescription = NewBstr(error.what());
    } else {
      LeaveWithThread(error);
    }
    return DISP_E_EXCEPTION;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

void RaiseFailure(HRESULT result, EXCEPINFO& info, const std::string& what) {
  if (result == DISP_E_EXCEPTION && info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  const std::string source = ToText(info.bstrSource);
  const std::string description = ToText(info.bstrDescription);
  const std::int32_t number = result != DISP_E_EXCEPTION ? ToNumber(result)
                              : info.wCode != 0          ? info.wCode
                                                         : ToNumber(info.scode);
  SysFreeString(info.bstrSource);
  SysFreeString(info.bstrDescription);
  SysFreeString(info.bstrHelpFile);
  const HRESULT status = result == DISP_E_EXCEPTION ? info.scode : result;
  throw Error(number, source.empty() ? "TessarLornPickingAndDelivery" : source,
              description.empty() ? "The call of " + what + " failed: " + SystemText(status) : description);
}

}  // namespace tessarlorn::com
