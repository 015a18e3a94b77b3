// Errors across the boundary of COM, in both directions.
#pragma once

#include <string>

#include "com_base/windows_headers.h"
#include "tessarlorn/error.h"

namespace tessarlorn::com {

/// The HRESULT of an error's number: automation's small numbers belong to the facility of controls, as scripts expect;
/// others are HRESULTs already.
HRESULT ToHresult(std::int32_t number);
/// The number behind an HRESULT, as a script's Err.Number shows it.
std::int32_t ToNumber(HRESULT result);

/// What the system says of an HRESULT, in the user's language; its hexadecimal digits when that is nothing.
std::string SystemText(HRESULT result);

/// The HRESULT of the exception that is being handled. Only to be called inside a catch block.
HRESULT CurrentStatus() noexcept;
/// Hands the exception that is being handled to the caller of an IDispatch, in its EXCEPINFO or, where that is null, as
/// the thread's IErrorInfo, which has no number; answers DISP_E_EXCEPTION, or E_OUTOFMEMORY when there is no memory for
/// its texts. Only to be called inside a catch block.
HRESULT ReportCurrent(EXCEPINFO* info) noexcept;
/// Raises what a call of another object answered: its EXCEPINFO, which is freed, or the HRESULT alone. `what` names the
/// member for the description.
[[noreturn]] void RaiseFailure(HRESULT result, EXCEPINFO& info, const std::string& what);

}  // namespace tessarlorn::com
