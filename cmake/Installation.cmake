# `cmake --install` and the packages. The tree can be moved: programs find their libraries and the
# module by relative paths, and so does the CMake package.
include(CMakePackageConfigHelpers)

# Where the descriptions of the services expect the agent.
set(NORVIK_HOME /opt/local/norvik)
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set_property(CACHE CMAKE_INSTALL_PREFIX PROPERTY VALUE "${NORVIK_HOME}")
endif()

# UninstallAgent.sh removes what a list names. A folder that was there before is not in it, unless a former
# installation made it. An unpacked archive has no list: nothing was installed.
install(CODE [[
  get_filename_component(norvik_prefix "${CMAKE_INSTALL_PREFIX}" ABSOLUTE)
  set(norvik_list "${norvik_prefix}/share/norvik-agent/installed-files")
  set(norvik_former)
  if(EXISTS "$ENV{DESTDIR}${norvik_list}")
    file(STRINGS "$ENV{DESTDIR}${norvik_list}" norvik_former)
    list(POP_FRONT norvik_former norvik_place)
    if(NOT norvik_place STREQUAL norvik_prefix)
      set(norvik_former)
    endif()
  endif()
  set(norvik_others)
  foreach(folder "" /bin /include /lib /lib/cmake /share /share/doc)
    if(IS_DIRECTORY "$ENV{DESTDIR}${norvik_prefix}${folder}")
      list(APPEND norvik_others "${norvik_prefix}${folder}/")
    endif()
  endforeach()]])

set(product norvik-agent NorvikAgentCommon NorvikKOB NorvikAgentMachine NorvikAgentDocuments)
add_custom_target(product DEPENDS ${product} norvik-host-conformance)
install(TARGETS ${product} RUNTIME DESTINATION bin LIBRARY DESTINATION lib ARCHIVE DESTINATION lib)
include("${CMAKE_SOURCE_DIR}/tests/conformance/Installation.cmake")

# A server needs no agent: only `cmake --install build --component receiver` installs it.
if(NORVIK_RECEIVER)
  install(TARGETS norvik-receiver NorvikAgentCommon
    RUNTIME DESTINATION bin COMPONENT receiver EXCLUDE_FROM_ALL
    LIBRARY DESTINATION lib COMPONENT receiver EXCLUDE_FROM_ALL)
  install(FILES docs/receiver.md DESTINATION share/doc/norvik-receiver COMPONENT receiver EXCLUDE_FROM_ALL)
endif()

# Headers for other hosts of the module. Left out are private headers of common/: those that include the
# database library, the one that compiles records, and the parsers of Apple's formats.
set(headers include/norvik-agent)
install(DIRECTORY common DESTINATION ${headers} FILES_MATCHING PATTERN "*.h"
  PATTERN common/apple EXCLUDE
  REGEX "/(Cells|Connection|ConnectionPool|DatabaseFile|DatabaseSchema|KeyValueTable)\\.h$" EXCLUDE
  REGEX "/(OneSqlite|ScanRules|Sentence|Sqlite|Statement|InventoryRecordDefinition)\\.h$" EXCLUDE)
install(DIRECTORY json DESTINATION ${headers} FILES_MATCHING PATTERN "*.h")
install(FILES platform/RecordedMachine.h DESTINATION ${headers}/platform)
install(FILES machine/FirstInventory.h machine/Gather.h DESTINATION ${headers}/machine)
foreach(name ApplyIncrement Difference DocumentChain DocumentChanges DocumentError DocumentText
    FileDocument MachineDocument Matching SectionKeys)
  install(FILES documents/${name}.h DESTINATION ${headers}/documents)
endforeach()

install(PROGRAMS packaging/UninstallAgent.sh DESTINATION .)
install(FILES README.md DESTINATION share/doc/norvik-agent)
install(FILES web/dist/licences.txt DESTINATION share/doc/norvik-agent RENAME page-licences.txt)
install(DIRECTORY docs examples DESTINATION share/doc/norvik-agent PATTERN __pycache__ EXCLUDE)
install(CODE [[
  set(norvik_documents "$ENV{DESTDIR}${norvik_prefix}/share/doc/norvik-agent")
  set(norvik_headers "$ENV{DESTDIR}${norvik_prefix}/include/norvik-agent")]])
install(SCRIPT cmake/InstalledLinks.cmake)
install(FILES packaging/help/norvik-agent.1 DESTINATION share/man/man1)
install(FILES packaging/help/norvik-agent.bash DESTINATION share/bash-completion/completions
  RENAME norvik-agent)
install(FILES packaging/help/_norvik-agent DESTINATION share/zsh/site-functions)
install(FILES packaging/help/norvik-agent.fish DESTINATION share/fish/vendor_completions.d)
install(DIRECTORY packaging/macos packaging/systemd DESTINATION share/norvik-agent)

# How others find it: with CMake, or with pkg-config.
if(APPLE)
  set(NORVIK_COMMON_FILE "libNorvikAgentCommon.${PROJECT_VERSION_MAJOR}.dylib")
  set(NORVIK_COMMON_SONAME "@rpath/${NORVIK_COMMON_FILE}")
else()
  set(NORVIK_COMMON_FILE "libNorvikAgentCommon.so.${PROJECT_VERSION_MAJOR}")
  set(NORVIK_COMMON_SONAME "${NORVIK_COMMON_FILE}")
endif()
set(NORVIK_MODULE_FILE "libNorvikKOB${CMAKE_SHARED_LIBRARY_SUFFIX}")
set(NORVIK_FRAMEWORKS)
if(NOT NORVIK_COMPAT)
  set(NORVIK_FRAMEWORKS "-framework IOKit" "-framework CoreFoundation")
endif()
configure_file(cmake/NorvikAgentConfig.cmake.in "${CMAKE_BINARY_DIR}/NorvikAgentConfig.cmake" @ONLY)
write_basic_package_version_file("${CMAKE_BINARY_DIR}/NorvikAgentConfigVersion.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_BINARY_DIR}/NorvikAgentConfig.cmake"
  "${CMAKE_BINARY_DIR}/NorvikAgentConfigVersion.cmake" DESTINATION lib/cmake/NorvikAgent)

list(JOIN NORVIK_FRAMEWORKS " " NORVIK_FRAMEWORKS)
foreach(part cxxflags libs)
  execute_process(COMMAND "${wxWidgets_CONFIG_EXECUTABLE}" --${part} base
    OUTPUT_VARIABLE NORVIK_WX_${part} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
endforeach()
list(TRANSFORM Boost_INCLUDE_DIRS PREPEND -I OUTPUT_VARIABLE NORVIK_BOOST_INCLUDES)
list(TRANSFORM Boost_LIBRARY_DIRS PREPEND -L OUTPUT_VARIABLE NORVIK_BOOST_LIBRARIES)
list(JOIN NORVIK_BOOST_INCLUDES " " NORVIK_BOOST_INCLUDES)
list(JOIN NORVIK_BOOST_LIBRARIES " " NORVIK_BOOST_LIBRARIES)
foreach(name norvik-agent norvik-agent-machine norvik-agent-documents)
  configure_file(cmake/${name}.pc.in "${CMAKE_BINARY_DIR}/${name}.pc" @ONLY)
  install(FILES "${CMAKE_BINARY_DIR}/${name}.pc" DESTINATION lib/pkgconfig)
endforeach()

# The descriptions of the services contain the path of the programs, so they are installed into the
# system only with a tree at that path. `file(INSTALL)` respects DESTDIR.
if(APPLE)
  set(services "packaging/macos/com.norvik.agent.plist" /Library/LaunchDaemons
    "packaging/macos/com.norvik.agent.user.plist" /Library/LaunchAgents)
else()
  set(services "packaging/systemd/norvik-agent.service" /usr/lib/systemd/system
    "packaging/systemd/norvik-agent-user.service" /usr/lib/systemd/user)
endif()
while(services)
  list(POP_FRONT services file folder)
  install(CODE "
    if(CMAKE_INSTALL_PREFIX STREQUAL \"${NORVIK_HOME}\")
      file(INSTALL DESTINATION \"${folder}\" TYPE FILE FILES \"${CMAKE_SOURCE_DIR}/${file}\")
    endif()")
endwhile()

install(CODE [[
  if(NOT norvik_prefix MATCHES "/_CPack_Packages/")
    set(files ${norvik_former} ${CMAKE_INSTALL_MANIFEST_FILES})
    list(TRANSFORM files REPLACE "/\\./" "/")
    list(FILTER files EXCLUDE REGEX "/$")
    set(last "${norvik_prefix}/UninstallAgent.sh" "${norvik_list}")
    list(REMOVE_ITEM files ${last})
    list(APPEND files ${last})
    list(REMOVE_DUPLICATES files)
    set(folders)
    foreach(file IN LISTS files)
      get_filename_component(folder "${file}" DIRECTORY)
      string(FIND "${folder}/" "${norvik_prefix}/" at)
      while(at EQUAL 0)
        list(APPEND folders "${folder}/")
        get_filename_component(folder "${folder}" DIRECTORY)
        string(FIND "${folder}/" "${norvik_prefix}/" at)
      endwhile()
    endforeach()
    if(norvik_others)
      list(REMOVE_ITEM folders ${norvik_others})
    endif()
    list(FILTER norvik_former INCLUDE REGEX "/$")
    list(APPEND folders ${norvik_former})
    list(REMOVE_DUPLICATES folders)
    list(SORT folders ORDER DESCENDING)
    list(JOIN files "\n" files)
    list(JOIN folders "\n" folders)
    file(WRITE "$ENV{DESTDIR}${norvik_list}" "${norvik_prefix}\n${files}\n${folders}\n")
  endif()]])

set(CPACK_PACKAGE_NAME norvik-agent)
set(CPACK_PACKAGE_VENDOR Norvik)
set(CPACK_PACKAGE_CONTACT "Norvik <agent@norvik.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Inventory and remote administration of this machine")
set(CPACK_PACKAGE_FILE_NAME
  "norvik-agent-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR TGZ)
find_program(NORVIK_SHLIBDEPS dpkg-shlibdeps)
if(NORVIK_SHLIBDEPS)
  list(APPEND CPACK_GENERATOR DEB)
endif()
mark_as_advanced(NORVIK_SHLIBDEPS)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, which the search for libraries does not see.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libcurl4 (>= 7.66.0)")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}/lib")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${CMAKE_SOURCE_DIR}/packaging/debian/prerm")
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_SOURCE_DIR}/cmake/PackagePlace.cmake")
include(CPack)
