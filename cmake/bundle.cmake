# Lays the page's plug-in out as bundles, one a product: the same program with other strings.
#
#   InstallDataPane.bundle              the default product
#   InstallDataPane-<product>.bundle    the others
#
# Each has Contents/MacOS/InstallDataPane, Contents/Info.plist and Contents/Resources/<language>.lproj/.

# GNUstep looks for a bundle's files at its top and knows nothing of Contents/; with links, one tree serves both. It
# reads the layout as it was written, but for one attribute, which it takes the other way round and misses where it
# is not there: a bar that stands is shown.
function(fit_bundle_for_gnustep bundle)
  set(layout ${PROJECT_SOURCE_DIR}/resources/InstallDataPane.xib)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${layout})
  file(READ ${layout} text)
  string(REPLACE "<progressIndicator " "<progressIndicator displayedWhenStopped=\"NO\" " text "${text}")
  file(CONFIGURE OUTPUT ${bundle}/Contents/Resources/InstallDataPane.xib CONTENT "${text}" @ONLY)
  file(CREATE_LINK Contents/Resources ${bundle}/Resources SYMBOLIC)
  file(CREATE_LINK Contents/MacOS/InstallDataPane ${bundle}/InstallDataPane SYMBOLIC)
  file(CREATE_LINK ../Info.plist ${bundle}/Contents/Resources/Info-gnustep.plist SYMBOLIC)
endfunction()

function(add_plugin_bundle bundle_name plugin_name folder_name)
  set(contents ${PROJECT_BINARY_DIR}/${bundle_name}/Contents)
  set(PLUGIN_NAME ${plugin_name})
  set(FOLDER_NAME ${folder_name})
  configure_file(${PROJECT_SOURCE_DIR}/resources/Info.plist.in ${contents}/Info.plist @ONLY)
  foreach(language IN LISTS TAVENHALL_LANGUAGES)
    configure_file(${PROJECT_SOURCE_DIR}/resources/${language}.lproj/Localizable.strings.in
                   ${contents}/Resources/${language}.lproj/Localizable.strings @ONLY)
    configure_file(${PROJECT_SOURCE_DIR}/resources/${language}.lproj/InfoPlist.strings
                   ${contents}/Resources/${language}.lproj/InfoPlist.strings COPYONLY)
  endforeach()
  set(program ${contents}/MacOS/InstallDataPane)
  set(parts ${program})
  if(TAVINSTALL_COCOA AND APPLE)
    # What the Installer of macOS wants: the compiled layout, and a signature over everything, so made last; signing
    # also writes into the program. Ad hoc; a release signs anew.
    set(layout ${PROJECT_SOURCE_DIR}/resources/InstallDataPane.xib)
    set(compiled_layout ${contents}/Resources/InstallDataPane.nib)
    set(signature ${contents}/_CodeSignature/CodeResources)
    file(GLOB_RECURSE texts ${contents}/*.plist ${contents}/*.strings)
    list(APPEND parts ${compiled_layout} ${signature})
    set(finish
      COMMAND ibtool --minimum-deployment-target ${CMAKE_OSX_DEPLOYMENT_TARGET} --compile ${compiled_layout} ${layout}
      COMMAND codesign --force --sign - ${PROJECT_BINARY_DIR}/${bundle_name})
  elseif(TAVINSTALL_COCOA)
    fit_bundle_for_gnustep(${PROJECT_BINARY_DIR}/${bundle_name})
  endif()
  add_custom_command(
    OUTPUT ${parts}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${contents}/MacOS
    COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:InstallDataPane> ${program}
    ${finish}
    DEPENDS InstallDataPane ${layout} ${texts}
    VERBATIM)
  set_property(GLOBAL APPEND PROPERTY TAVENHALL_BUNDLE_PROGRAMS ${parts})
  install(DIRECTORY ${PROJECT_BINARY_DIR}/${bundle_name}
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/tavinstall USE_SOURCE_PERMISSIONS)
endfunction()

function(add_plugin_bundles)
  set(bundle_name InstallDataPane.bundle)
  foreach(row IN LISTS TAVENHALL_PRODUCTS)
    string(REPLACE ":" ";" row "${row}")
    list(GET row 0 plugin_name)
    list(GET row 1 folder_name)
    if(NOT bundle_name)
      set(bundle_name InstallDataPane-${plugin_name}.bundle)
    endif()
    add_plugin_bundle(${bundle_name} ${plugin_name} ${folder_name})
    set(bundle_name "")
  endforeach()
  get_property(programs GLOBAL PROPERTY TAVENHALL_BUNDLE_PROGRAMS)
  add_custom_target(bundles ALL DEPENDS ${programs})
endfunction()
