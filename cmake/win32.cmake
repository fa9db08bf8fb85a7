# 32-bit Windows with Debian's mingw-w64 (posix threads, static runtime).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# SSE2 arithmetic: the same digits as the native build. The stack is realigned at every export.
# Without the inline functions of MinGW's headers, whose fabs and isfinite are x87 code that no loop gets around.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -D__CRT__NO_INLINE")
set(CMAKE_CXX_FLAGS_INIT "-msse2 -mfpmath=sse -D__CRT__NO_INLINE")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")
# Tests run under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine.sh)
