# Compiles the translations of the program's own texts, po/<language>.po, to where the program finds them: in the
# build folder as installed. scripts/translations takes new texts from the sources.
find_program(MSGFMT msgfmt REQUIRED)
set(catalogs)
foreach(language IN ITEMS de es fr it ja zh_CN)
  set(folder share/locale/${language}/LC_MESSAGES)
  add_custom_command(
    OUTPUT ${PROJECT_BINARY_DIR}/${folder}/tavinstall.mo
    COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/${folder}
    COMMAND ${MSGFMT} --check-format --check-domain -o ${PROJECT_BINARY_DIR}/${folder}/tavinstall.mo ${PROJECT_SOURCE_DIR}/po/${language}.po
    DEPENDS ${PROJECT_SOURCE_DIR}/po/${language}.po
    VERBATIM)
  list(APPEND catalogs ${PROJECT_BINARY_DIR}/${folder}/tavinstall.mo)
  install(FILES ${PROJECT_BINARY_DIR}/${folder}/tavinstall.mo
    DESTINATION ${CMAKE_INSTALL_LOCALEDIR}/${language}/LC_MESSAGES)
endforeach()
add_custom_target(catalogs ALL DEPENDS ${catalogs})
add_dependencies(tavinstall catalogs)
