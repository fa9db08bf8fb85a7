# Run by CPack on the tree of the Debian package: documents where and as Debian has them, the manual page and the words
# that a shell completes, as the program itself prints them.
if(NOT CPACK_GENERATOR STREQUAL DEB)
  return()
endif()
set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr)
set(documents ${tree}/share/doc/kestrune)
file(WRITE ${documents}/copyright "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: Kestrune

Files: *
Copyright: 2026 The Kestrune developers
License: Apache-2.0
 On Debian systems the text of the Apache License 2.0 is /usr/share/common-licenses/Apache-2.0. The tables of data that
 are compiled in keep the notices of data/NOTICE.md in this folder.
")
file(REMOVE ${documents}/LICENSE)
file(READ ${documents}/README.md readme)
string(REPLACE "[LICENSE](LICENSE)" "[copyright](copyright)" readme "${readme}")
file(WRITE ${documents}/README.md "${readme}")

function(compressed from to)
  get_filename_component(folder ${to} DIRECTORY)
  file(MAKE_DIRECTORY ${folder})
  execute_process(COMMAND gzip -9nc ${from} OUTPUT_FILE ${to} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

compressed(${documents}/CHANGELOG.md ${documents}/changelog.gz)
string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${documents}/changelog.Debian "kestrune (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Version ${CPACK_PACKAGE_VERSION}; changelog.gz in this folder has what changed.

 -- ${CPACK_PACKAGE_CONTACT}  ${now}
")
compressed(${documents}/changelog.Debian ${documents}/changelog.Debian.gz)
file(REMOVE ${documents}/changelog.Debian)
execute_process(COMMAND ${tree}/bin/kestrune man OUTPUT_FILE ${documents}/kestrune.1 COMMAND_ERROR_IS_FATAL ANY)
compressed(${documents}/kestrune.1 ${tree}/share/man/man1/kestrune.1.gz)
file(REMOVE ${documents}/kestrune.1)
file(WRITE ${tree}/share/lintian/overrides/kestrune
  "# Loaded at run time by their plain names, never linked: they have no version of their own.
kestrune: shared-library-lacks-version *
kestrune: link-to-shared-library-in-wrong-package *
kestrune: package-name-doesnt-match-sonames *
# CPack adds the call beside the trigger.
kestrune: maintscript-calls-ldconfig *
# Made outside of the archive, for one architecture.
kestrune: initial-upload-closes-no-bugs *
kestrune: pkg-config-unavailable-for-cross-compilation *
")
file(CHMOD_RECURSE ${tree}/share FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ
  DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
