# Handles of SQLite pass between SOCI and our sources, so both must call one copy of it. Homebrew's SOCI is
# linked with Homebrew's SQLite, and find_package would take the system's.

# norvik_sqlite_of(RESULT LIBRARIES): the SQLite library in what `otool -L` prints of SOCI, if there is such
# a file. The system's own libraries are no files.
function(norvik_sqlite_of result libraries)
  string(REGEX MATCH "[ \t]/[^ \t\n]*/libsqlite3[^ \t\n]*[.]dylib" library "${libraries}")
  string(STRIP "${library}" library)
  if(NOT EXISTS "${library}")
    set(library "")
  endif()
  set(${result} "${library}" PARENT_SCOPE)
endfunction()

if(APPLE AND NOT CMAKE_CROSSCOMPILING AND NOT SQLite3_LIBRARY)
  execute_process(COMMAND "${CMAKE_OTOOL}" -L "${SOCI_SQLITE3_LIBRARY}" OUTPUT_VARIABLE libraries
    ERROR_QUIET)
  norvik_sqlite_of(library "${libraries}")
  if(library)
    get_filename_component(folder "${library}" DIRECTORY)
    set(SQLite3_LIBRARY "${library}" CACHE FILEPATH "SQLite as SOCI is linked with it")
    set(SQLite3_INCLUDE_DIR "${folder}/../include" CACHE PATH "Headers of that SQLite")
  endif()
endif()
find_package(SQLite3 REQUIRED)

# A program for another system cannot be run here; the agent checks the same when it starts.
if(NOT CMAKE_CROSSCOMPILING AND NOT DEFINED NORVIK_ONE_SQLITE)
  try_run(NORVIK_ONE_SQLITE NORVIK_ONE_SQLITE_COMPILES
    SOURCES "${CMAKE_SOURCE_DIR}/cmake/SqliteProbe.cpp"
      "${CMAKE_SOURCE_DIR}/common/database/OneSqlite.cpp"
    CMAKE_FLAGS "-DINCLUDE_DIRECTORIES=${CMAKE_SOURCE_DIR};${SOCI_INCLUDE_DIR};${SOCI_INCLUDE_DIR}/soci"
    LINK_LIBRARIES "${SOCI_SQLITE3_LIBRARY}" "${SOCI_CORE_LIBRARY}" SQLite::SQLite3
    COMPILE_OUTPUT_VARIABLE messages
    CXX_STANDARD 17)
  if(NOT NORVIK_ONE_SQLITE_COMPILES)
    unset(NORVIK_ONE_SQLITE_COMPILES CACHE)
    unset(NORVIK_ONE_SQLITE CACHE)
    message(FATAL_ERROR "A program with SOCI and SQLite does not build:\n${messages}")
  endif()
  if(NOT NORVIK_ONE_SQLITE EQUAL 0)
    unset(NORVIK_ONE_SQLITE CACHE)
    message(FATAL_ERROR "SOCI (${SOCI_SQLITE3_LIBRARY}) uses another copy of SQLite than "
      "${SQLite3_LIBRARIES}: name SOCI's with -D SQLite3_LIBRARY=... and -D SQLite3_INCLUDE_DIR=...")
  endif()
endif()
