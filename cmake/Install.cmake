# cmake --install: headers, libraries, import libraries, the command line, what find_package(Kestrune) and pkg-config
# need, bindings, examples and documents. The siblings lie beside the library, under their plain names.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Kestrune)
set(libraries KVGasThermo KVCmpdPureLite KVToolsLite)
install(TARGETS ${libraries} kestrune
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE EXCLUDE_FROM_ALL DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/kestrune DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(WIN32)
  install(FILES ${CMAKE_BINARY_DIR}/lib/libKVGasThermo.dll.a ${CMAKE_BINARY_DIR}/lib/KVGasThermo.lib
    DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

set(library_file ${CMAKE_INSTALL_LIBDIR}/libKVGasThermo.so)
if(WIN32)
  set(library_file ${CMAKE_INSTALL_BINDIR}/KVGasThermo.dll)
endif()
configure_package_config_file(cmake/KestruneConfig.cmake.in ${CMAKE_BINARY_DIR}/KestruneConfig.cmake
  INSTALL_DESTINATION ${package_folder} PATH_VARS CMAKE_INSTALL_INCLUDEDIR CMAKE_INSTALL_LIBDIR library_file)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/KestruneConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/KestruneConfig.cmake ${CMAKE_BINARY_DIR}/KestruneConfigVersion.cmake
  DESTINATION ${package_folder})
# pkg-config: from its own folder, so that the tree may be moved, unless a folder was given from the root.
foreach(folder LIBDIR INCLUDEDIR)
  set(pc_${folder} "\${prefix}/${CMAKE_INSTALL_${folder}}")
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    set(pc_${folder} "${CMAKE_INSTALL_${folder}}")
  endif()
endforeach()
set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  file(RELATIVE_PATH up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" up ${up})
  set(pc_prefix "\${pcfiledir}/${up}")
endif()
configure_file(cmake/kestrune.pc.in ${CMAKE_BINARY_DIR}/kestrune.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/kestrune.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/kestrune)
install(FILES README.md LICENSE CHANGELOG.md CITATION.cff CONTRIBUTING.md DESTINATION ${documents})
install(FILES data/NOTICE.md data/README.md DESTINATION ${documents}/data)
# What the documents link to.
foreach(linked bench/README.md fuzz/README.md src/edge/README.md src/frame/README.md tests/README.md include/kestrune/kvgasthermo.h
    web/kestrune/README.md web/kestrune/index.d.ts)
  get_filename_component(folder ${linked} DIRECTORY)
  install(FILES ${linked} DESTINATION ${documents}/${folder})
endforeach()
install(DIRECTORY docs bindings examples DESTINATION ${documents})
install(DIRECTORY python/kestrune DESTINATION ${documents}/bindings/python FILES_MATCHING PATTERN _exports.py)
