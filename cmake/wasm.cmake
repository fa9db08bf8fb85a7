# WebAssembly with Debian's emscripten: vectors of two doubles, C++ exceptions as the engine has them (Node 17, Chrome 95,
# Firefox 100, Safari 16.4), so that code that throws nothing is not slowed down.
if(NOT EXISTS /usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
  message(FATAL_ERROR "no emscripten: apt-get install --no-install-recommends emscripten (scripts/web.sh does that)")
endif()
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)
set(CMAKE_C_FLAGS_INIT "-msimd128 -fwasm-exceptions")
set(CMAKE_CXX_FLAGS_INIT "-msimd128 -fwasm-exceptions")
