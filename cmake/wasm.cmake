# WebAssembly with Debian's emscripten: vectors of two doubles, C++ exceptions as the engine has them (Node 17, Chrome 95,
# Firefox 100, Safari 16.4), so that code that throws nothing is not slowed down.
if(NOT EXISTS /usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
  message(FATAL_ERROR "no emscripten: apt-get install --no-install-recommends emscripten (scripts/web.sh does that)")
endif()
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
# clang 14, on which it stands, makes wrong sums of loops that its SLP vectoriser puts into vectors of two.
set(CMAKE_C_FLAGS_INIT "-msimd128 -fwasm-exceptions -fno-slp-vectorize")
set(CMAKE_CXX_FLAGS_INIT "-msimd128 -fwasm-exceptions -fno-slp-vectorize")
