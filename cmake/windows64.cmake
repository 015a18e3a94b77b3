# Toolchain: 64-bit Windows by MinGW-w64 on Linux.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
