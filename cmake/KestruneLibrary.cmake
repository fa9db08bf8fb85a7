# kestrune_library(NAME DEF file.def DESCRIPTION text SOURCES ... LINK ...)
# One of the three shared libraries: exports exactly the names of its .def file, undecorated on 32-bit
# Windows, and carries nothing but the standard library.
function(kestrune_library name)
  cmake_parse_arguments(ARG "" "DEF;DESCRIPTION" "SOURCES;LINK" ${ARGN})
  # WebAssembly: a part of the one module (web/native).
  if(EMSCRIPTEN)
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC kestrune_options ${ARG_LINK})
    target_compile_definitions(${name} PRIVATE KV_BUILDING)
    # noipa is g++'s; what it guards, the control words of a processor, does not exist here.
    target_compile_options(${name} PRIVATE -Wno-unknown-attributes)
    return()
  endif()
  add_library(${name} SHARED ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE kestrune_options ${ARG_LINK})
  target_compile_definitions(${name} PRIVATE KV_BUILDING)
  if(WIN32)
    set_target_properties(${name} PROPERTIES PREFIX "" IMPORT_PREFIX "lib")
    target_sources(${name} PRIVATE ${ARG_DEF})
    # The .def file alone decides what is exported.
    target_link_options(${name} PRIVATE -Wl,--exclude-all-symbols -Wl,--kill-at -Wl,--enable-stdcall-fixup
      -Wl,--no-insert-timestamp)
  else()
    # On Linux the same list becomes a version script: the names and nothing else.
    set(map ${CMAKE_CURRENT_BINARY_DIR}/${name}.map)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ARG_DEF})
    file(STRINGS ${ARG_DEF} names REGEX "^  [A-Za-z]")
    list(TRANSFORM names STRIP)
    list(JOIN names ";\n    " names)
    file(CONFIGURE OUTPUT ${map} CONTENT "{\n  global:\n    ${names};\n  local: *;\n};\n" @ONLY)
    target_link_options(${name} PRIVATE -Wl,--version-script=${map})
    # clang keeps the run-time library of its sanitizers in the program: there alone names may be missing here.
    if(NOT (KESTRUNE_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES Clang))
      target_link_options(${name} PRIVATE -Wl,--no-undefined)
    endif()
    set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${map})
    # A host finds its own C++ run-time library, of another version perhaps, undisturbed: nothing of this one is exported.
    if(KESTRUNE_STATIC_RUNTIME AND NOT KESTRUNE_SANITIZE)
      target_link_options(${name} PRIVATE -static-libstdc++ -static-libgcc)
    endif()
  endif()
  kestrune_release(${name} "${ARG_DESCRIPTION}")
endfunction()
