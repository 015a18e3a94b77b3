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
