# One precompiled header (PrecompiledHeader.h) for all boxes and one for the tests. A compiler loads it
# only if the macros on the command line are the same as when it was made, so every target that uses it
# is compiled with the definitions of all libraries in it.
option(NORVIK_PRECOMPILED_HEADER "Compile the headers of libraries once" ON)

add_library(norvik_library_headers INTERFACE)
target_link_libraries(norvik_library_headers INTERFACE norvik_wx Boost::serialization Threads::Threads)

# norvik_precompiled_header(NAME [HEADERS header...] [LINKS library...]): a target that compiles such a
# header, with additional headers and the libraries that they belong to.
function(norvik_precompiled_header name)
  cmake_parse_arguments(ARG "" "" "HEADERS;LINKS" ${ARGN})
  file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/${name}.cpp" CONTENT "")
  add_library(${name} OBJECT "${CMAKE_BINARY_DIR}/${name}.cpp")
  target_link_libraries(${name} PRIVATE norvik_library_headers norvik_warnings ${ARG_LINKS})
  # By its name only: an absolute path would make it another header for ccache in each checkout.
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/cmake")
  target_precompile_headers(${name} PRIVATE <PrecompiledHeader.h> ${ARG_HEADERS})
endfunction()

# What a library hides that exports only what it names. Clang wants a header of its own for it.
set(NORVIK_HIDDEN CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)

if(NORVIK_PRECOMPILED_HEADER)
  norvik_precompiled_header(norvik_headers)
  norvik_precompiled_header(norvik_hidden_headers)
  set_target_properties(norvik_hidden_headers PROPERTIES ${NORVIK_HIDDEN})
endif()

# norvik_use_precompiled_header(TARGET NAME): compiles TARGET with the precompiled header NAME.
function(norvik_use_precompiled_header target name)
  if(NOT NORVIK_PRECOMPILED_HEADER)
    return()
  endif()
  target_link_libraries(${target} PRIVATE norvik_library_headers)
  target_precompile_headers(${target} REUSE_FROM ${name})
  # A program must be compiled with the same -fPIC as the header; CMake would give it -fPIE.
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${target} PRIVATE -fPIC)
  endif()
endfunction()
