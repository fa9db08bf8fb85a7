# CPack: kestrune-<version>-<platform>.zip or .tar.gz, and a Debian package. scripts/package.sh runs it.
set(CPACK_PACKAGE_NAME kestrune)
set(CPACK_PACKAGE_VENDOR "The Kestrune developers")
set(CPACK_PACKAGE_CONTACT "Kestrune developers <kestrune@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "phase equilibria and properties of natural gas")
set(CPACK_PACKAGE_DESCRIPTION "Library and command line for natural gas and hydrocarbon mixtures with
water and light gases: flashes of up to three phases, phase envelopes,
critical points, properties, water contents and hydrate lines, on the
PPR78 equation of state.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_VERBATIM_VARIABLES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  math(EXPR bits "8 * ${CMAKE_SIZEOF_VOID_P}")
  set(CPACK_SYSTEM_NAME win${bits})
else()
  set(CPACK_GENERATOR TGZ DEB)
  set(CPACK_SYSTEM_NAME linux)
endif()
set(CPACK_PACKAGE_FILE_NAME kestrune-${PROJECT_VERSION}-${CPACK_SYSTEM_NAME})

# Debian: its documents have names and forms of their own. The runtime and what developers need are one package, for the
# siblings are loaded by their plain names.
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
file(WRITE ${CMAKE_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
file(WRITE ${CMAKE_BINARY_DIR}/debian/shlibs
  "libKVGasThermo ${PROJECT_VERSION_MAJOR} kestrune (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/debian/triggers ${CMAKE_BINARY_DIR}/debian/shlibs)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
  WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianDocuments.cmake)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/PackageOptions.cmake)
include(CPack)
