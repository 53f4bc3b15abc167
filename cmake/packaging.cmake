# What is installed besides the program and its bundles, and the packages: cpack -G DEB, cpack -G TGZ.

install(FILES docs/man/tavinstall.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES docs/attributes.md docs/diagnostics.md docs/protocol.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES completion/tavinstall.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME tavinstall)
install(FILES completion/tavinstall.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

install(FILES completion/_tavinstall DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)

# ---- Packages ----

set(CPACK_PACKAGE_NAME tavinstall)
set(CPACK_PACKAGE_VENDOR "Tavenhall")
set(CPACK_PACKAGE_CONTACT "Tavenhall <support@tavenhall.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "installs sample libraries and tries installer sets")
set(CPACK_PACKAGE_DESCRIPTION
"The data page of an installer without the installer. It copies a sample library
from numbered discs, or from a folder beside the installer package, into the
user's data folder, in the terminal or for another program. It rehearses whole
installer sets in a sandbox, says what is wrong with a set before it ships, and
tells what an installation log says.")
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR "DEB;TGZ")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The libraries are found from the programs; the tools are started by name, and only by some commands.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "bubblewrap, squashfs-tools, xorriso")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "squashfuse, fuseiso")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/package_of_generator.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/package_files.cmake)
set(CPACK_TAVINSTALL_SOURCE_DIR ${PROJECT_SOURCE_DIR})
include(CPack)
