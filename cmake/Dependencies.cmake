find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS filesystem serialization)
find_package(wxWidgets 3.2 REQUIRED COMPONENTS base xml)
find_path(SOCI_INCLUDE_DIR soci/soci.h REQUIRED)
find_library(SOCI_CORE_LIBRARY soci_core REQUIRED)
find_library(SOCI_SQLITE3_LIBRARY soci_sqlite3 REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(EXPAT REQUIRED)
find_package(CURL REQUIRED)
find_package(spdlog REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(CLI11 REQUIRED)
pkg_check_modules(libzip REQUIRED IMPORTED_TARGET libzip)
pkg_check_modules(libsodium REQUIRED IMPORTED_TARGET libsodium)

# One target for wxWidgets, with its headers as system headers.
add_library(norvik_wx INTERFACE)
target_include_directories(norvik_wx SYSTEM INTERFACE ${wxWidgets_INCLUDE_DIRS})
target_compile_definitions(norvik_wx INTERFACE ${wxWidgets_DEFINITIONS})
target_link_libraries(norvik_wx INTERFACE ${wxWidgets_LIBRARIES})

# SOCI's package has no CMake description.
add_library(norvik_soci INTERFACE)
target_include_directories(norvik_soci SYSTEM INTERFACE "${SOCI_INCLUDE_DIR}" "${SOCI_INCLUDE_DIR}/soci")
target_link_libraries(norvik_soci INTERFACE
  "${SOCI_SQLITE3_LIBRARY}" "${SOCI_CORE_LIBRARY}" SQLite::SQLite3)

# Apple's frameworks. On other systems platform/compat implements them under Apple's names.
add_library(norvik_apple INTERFACE)
if(APPLE)
  target_link_libraries(norvik_apple INTERFACE "-framework IOKit" "-framework CoreFoundation"
    "-framework CoreServices" "-framework Foundation" "-framework CoreLocation")
else()
  pkg_check_modules(libplist REQUIRED IMPORTED_TARGET libplist-2.0)
  target_include_directories(norvik_apple INTERFACE
    "${CMAKE_SOURCE_DIR}/platform/compat/include")
  target_link_libraries(norvik_apple INTERFACE PkgConfig::libplist)
endif()
