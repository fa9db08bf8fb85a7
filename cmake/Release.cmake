# kestrune_release(TARGET DESCRIPTION): what a file that is shipped has beside its code.
#   Windows: a version resource
#   release builds: no debugging data of its own; they lie beside it as <file>.debug, where debuggers look for them
function(kestrune_release target description)
  get_target_property(type ${target} TYPE)
  if(WIN32)
    set(version_description "${description}")
    set(version_name ${target}.dll)
    set(version_file_type VFT_DLL)
    if(type STREQUAL EXECUTABLE)
      set(version_name ${target}.exe)
      set(version_file_type VFT_APP)
    endif()
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc @ONLY)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc)
  endif()
  if(CMAKE_BUILD_TYPE STREQUAL Release AND NOT KESTRUNE_SANITIZE AND CMAKE_OBJCOPY AND CMAKE_STRIP)
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:${target}> $<TARGET_FILE:${target}>.debug
      COMMAND ${CMAKE_STRIP} --strip-unneeded $<TARGET_FILE:${target}>
      COMMAND ${CMAKE_OBJCOPY} --add-gnu-debuglink=$<TARGET_FILE:${target}>.debug $<TARGET_FILE:${target}> VERBATIM)
  endif()
endfunction()
