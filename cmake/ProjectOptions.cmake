set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

# Programs find their libraries beside them, so that the tree can be moved.
if(APPLE)
  set(CMAKE_INSTALL_RPATH "@loader_path/../lib")
  # wxWidgets names frameworks for windows, of which nothing here uses anything.
  add_link_options(-Wl,-dead_strip_dylibs)
else()
  set(CMAKE_INSTALL_RPATH "$ORIGIN/../lib")
endif()
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# Where the calls of macOS are platform/compat: with the data of a recorded Mac. On macOS itself that is
# for the tests; the product calls the system.
set(compat ON)
if(APPLE)
  set(compat OFF)
endif()
option(NORVIK_COMPAT "Use platform/compat in place of the calls of macOS" ${compat})
if(NOT APPLE AND NOT NORVIK_COMPAT)
  message(FATAL_ERROR "NORVIK_COMPAT=OFF needs macOS: only platform/compat has its calls here.")
endif()

set(NORVIK_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them")
if(NORVIK_SANITIZE)
  # A finding of a sanitizer fails the test that caused it.
  add_compile_options(-fsanitize=${NORVIK_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${NORVIK_SANITIZE})
endif()
option(NORVIK_COVERAGE "Instrument for coverage" OFF)
if(NORVIK_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

find_program(NORVIK_CCACHE ccache)
if(NORVIK_CCACHE)
  # Precompiled headers are compared by content and paths are relative to the source tree, so that two
  # checkouts share compiled sources.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros
    "CCACHE_BASEDIR=${CMAKE_SOURCE_DIR}" "${NORVIK_CCACHE}")
endif()

# Warnings of our own code are errors; headers of libraries come in as system headers.
add_library(norvik_warnings INTERFACE)
set(warnings "${CMAKE_SOURCE_DIR}/cmake/warnings.txt")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${warnings}")
file(STRINGS "${warnings}" warnings REGEX "^-")
target_compile_options(norvik_warnings INTERFACE ${warnings})
# GCC 12 wrongly reports that the assignment of boost::variant reads uninitialised memory.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(norvik_warnings INTERFACE -Wno-maybe-uninitialized)
endif()
