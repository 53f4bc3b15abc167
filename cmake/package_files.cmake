# Finishes the files of a package before it is closed: strips the plug-ins, which are no libraries to cpack's own
# strip, and lays out what Debian wants besides, always to the same bytes.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX})
file(GLOB plugins ${root}/lib*/tavinstall/*.bundle/Contents/MacOS/InstallDataPane
  ${root}/lib/*/tavinstall/*.bundle/Contents/MacOS/InstallDataPane)
foreach(plugin IN LISTS plugins)
  execute_process(COMMAND strip --strip-unneeded ${plugin} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(documents ${root}/share/doc/tavinstall)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # SOURCE_DATE_EPOCH where it is set
file(WRITE ${documents}/changelog.Debian
"tavinstall (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * What is new is in changelog.gz.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
configure_file(${CPACK_TAVINSTALL_SOURCE_DIR}/cmake/debian_copyright ${documents}/copyright COPYONLY)
file(RENAME ${documents}/CHANGELOG.md ${documents}/changelog)
foreach(file IN ITEMS
    ${documents}/changelog ${documents}/changelog.Debian ${root}/share/man/man1/tavinstall.1)
  execute_process(COMMAND gzip -9 -n ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
# Debian's zsh looks elsewhere for what packages bring.
file(MAKE_DIRECTORY ${root}/share/zsh/vendor-completions)
file(RENAME ${root}/share/zsh/site-functions/_tavinstall ${root}/share/zsh/vendor-completions/_tavinstall)
file(REMOVE_RECURSE ${root}/share/zsh/site-functions)
