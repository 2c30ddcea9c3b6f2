find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS filesystem serialization)
find_package(wxWidgets 3.2 REQUIRED COMPONENTS base xml)
find_path(SOCI_INCLUDE_DIR soci/soci.h REQUIRED)
find_library(SOCI_CORE_LIBRARY soci_core REQUIRED)
find_library(SOCI_SQLITE3_LIBRARY soci_sqlite3 REQUIRED)
include(OneSqlite)
find_package(EXPAT REQUIRED)
find_package(CURL REQUIRED)
# Its headers only: the agent loads the library when it needs it (host/server/CurlLibrary.h).
add_library(norvik_curl_headers INTERFACE)
target_include_directories(norvik_curl_headers SYSTEM INTERFACE ${CURL_INCLUDE_DIRS})
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

# Apple's frameworks, or platform/compat, which implements them under Apple's names. Their headers are
# Apple's wherever there are some.
add_library(norvik_apple INTERFACE)
if(NORVIK_COMPAT)
  pkg_check_modules(libplist REQUIRED IMPORTED_TARGET libplist-2.0)
  target_link_libraries(norvik_apple INTERFACE PkgConfig::libplist nlohmann_json::nlohmann_json)
else()
  target_link_libraries(norvik_apple INTERFACE "-framework IOKit" "-framework CoreFoundation"
    "-framework CoreServices" "-framework Foundation" "-framework CoreLocation")
endif()
if(NOT APPLE)
  target_include_directories(norvik_apple INTERFACE
    "${CMAKE_SOURCE_DIR}/platform/compat/include")
endif()
