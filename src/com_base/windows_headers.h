// The headers of Windows. Whatever depends on the compiler stands here and nowhere else.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
// The order matters to these.
#include <objbase.h>
#include <oleauto.h>
#include <olectl.h>
#include <unknwn.h>

/// The entry of a library that the compiler's runtime brings.
#ifdef _MSC_VER
#define TESSARLORN_RUNTIME_ENTRY _DllMainCRTStartup
#else
#define TESSARLORN_RUNTIME_ENTRY DllMainCRTStartup
#endif
extern "C" BOOL WINAPI TESSARLORN_RUNTIME_ENTRY(HINSTANCE module, DWORD reason, LPVOID process_ends);
