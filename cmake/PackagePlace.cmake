# Read by cpack for each kind of package: a system package has a fixed prefix, an archive has none.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_PACKAGING_INSTALL_PREFIX /opt/local/norvik)
endif()
