# 64-bit Windows, built with Debian's MinGW-w64 (the variant with POSIX threads) and tested under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(VELTRANO_WINDOWS_TRIPLET x86_64-w64-mingw32)
include("${CMAKE_CURRENT_LIST_DIR}/windows-common.cmake")
