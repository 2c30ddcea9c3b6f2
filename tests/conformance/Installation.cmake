# Included by cmake/Installation.cmake, since files are listed for UninstallAgent.sh in the order of installation.
install(TARGETS norvik-host-conformance NorvikConformanceProbe
  RUNTIME DESTINATION bin LIBRARY DESTINATION lib)
install(FILES tests/conformance/HostAdapter.h DESTINATION include/norvik-agent/conformance)
