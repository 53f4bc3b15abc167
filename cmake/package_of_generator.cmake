# What differs between the kinds of packages. Read by cpack for each.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
else()
  set(CPACK_PACKAGING_INSTALL_PREFIX "")
endif()
