# kestrune_import_library(TARGET DEF file.def HEADER header.h)
# 64-bit Windows: names have no decoration, the linker's own import library serves MinGW, and one for MSVC is made of the
# definition file. 32-bit Windows: import libraries of a DLL whose exports are undecorated, for programs that link it
# instead of resolving the names at run time. Symbols _Name@N lead to the export Name.
#   lib/lib<TARGET>.dll.a  for MinGW, by GNU dlltool
#   lib/<TARGET>.lib       for MSVC: short import records by llvm-dlltool where there is one; otherwise the
#                          long format of GNU dlltool, which link.exe reads as well
function(kestrune_import_library target)
  cmake_parse_arguments(ARG "" "DEF;HEADER" "" ${ARGN})
  if(NOT WIN32)
    return()
  endif()
  find_program(KESTRUNE_LLVM_DLLTOOL NAMES llvm-dlltool llvm-dlltool-14)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(msvc ${CMAKE_BINARY_DIR}/lib/${target}.lib)
    if(KESTRUNE_LLVM_DLLTOOL)
      set(tool ${KESTRUNE_LLVM_DLLTOOL})
    else()
      set(tool ${CMAKE_DLLTOOL})
    endif()
    add_custom_command(OUTPUT ${msvc}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/lib
      COMMAND ${tool} -m i386:x86-64 -D ${target}.dll -d ${ARG_DEF} -l ${msvc} DEPENDS ${ARG_DEF} VERBATIM)
    add_custom_target(${target}_import ALL DEPENDS ${msvc})
    return()
  endif()
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  set(script ${PROJECT_SOURCE_DIR}/tools/make_import_def.py)
  set(decorated ${CMAKE_CURRENT_BINARY_DIR}/${target}_decorated.def)
  set(mingw ${CMAKE_BINARY_DIR}/lib/lib${target}.dll.a)
  set(msvc ${CMAKE_BINARY_DIR}/lib/${target}.lib)
  set(gnu_options -m i386 -k -D ${target}.dll -d ${decorated})
  # The linker's own import library knows the undecorated names only: it stays out of lib/.
  set_target_properties(${target} PROPERTIES ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/undecorated)

  add_custom_command(OUTPUT ${decorated}
    COMMAND ${Python3_EXECUTABLE} ${script} ${ARG_HEADER} ${ARG_DEF} ${decorated}
    DEPENDS ${script} ${ARG_HEADER} ${ARG_DEF} VERBATIM)
  add_custom_command(OUTPUT ${mingw}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/lib
    COMMAND ${CMAKE_DLLTOOL} ${gnu_options} -l ${mingw}
    DEPENDS ${decorated} VERBATIM)
  if(KESTRUNE_LLVM_DLLTOOL)
    set(msvc_command ${KESTRUNE_LLVM_DLLTOOL} -m i386 -k -D ${target}.dll -d ${decorated} -l ${msvc})
  else()
    set(msvc_command ${CMAKE_DLLTOOL} ${gnu_options} -l ${msvc})
  endif()
  add_custom_command(OUTPUT ${msvc}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/lib
    COMMAND ${msvc_command}
    DEPENDS ${decorated} VERBATIM)
  add_custom_target(${target}_import ALL DEPENDS ${mingw} ${msvc})

  # Programs link ${target}::import; it names no dependency on the DLL itself but the order of the build.
  add_library(${target}_import_mingw INTERFACE)
  target_link_libraries(${target}_import_mingw INTERFACE ${mingw})
  add_dependencies(${target}_import_mingw ${target}_import ${target})
  add_library(${target}::import ALIAS ${target}_import_mingw)
endfunction()
