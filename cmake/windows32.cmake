# Toolchain: 32-bit Windows by MinGW-w64 on Linux.
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
