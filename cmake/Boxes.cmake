# A box is one top-level folder with one object library. Its sources can include headers only of the
# boxes named in USES: every box has its own include root, which holds only a link to its folder, so an
# include against the dependency rule does not compile.

# norvik_box(NAME [HIDDEN] [USES box...] [LINKS target...])
#   NAME  folder in the source tree; the object library is called norvik_NAME
#   HIDDEN no symbol is visible outside of the library that the box goes into
#   USES  boxes whose headers the sources include
#   LINKS libraries that sources and headers need
function(norvik_box name)
  cmake_parse_arguments(BOX "HIDDEN" "" "USES;LINKS;SOURCES" ${ARGN})
  set(root "${CMAKE_BINARY_DIR}/boxes/${name}")
  file(MAKE_DIRECTORY "${root}")
  file(CREATE_LINK "${CMAKE_SOURCE_DIR}/${name}" "${root}/${name}" SYMBOLIC)

  add_library(norvik_${name} OBJECT ${BOX_SOURCES})
  target_include_directories(norvik_${name} PUBLIC "${root}")
  target_link_libraries(norvik_${name} PUBLIC ${BOX_LINKS} PRIVATE norvik_warnings)
  if(BOX_HIDDEN)
    set_target_properties(norvik_${name} PROPERTIES ${NORVIK_HIDDEN})
    norvik_use_precompiled_header(norvik_${name} norvik_hidden_headers)
  else()
    norvik_use_precompiled_header(norvik_${name} norvik_headers)
  endif()
  foreach(used IN LISTS BOX_USES)
    target_include_directories(norvik_${name} PUBLIC "${CMAKE_BINARY_DIR}/boxes/${used}")
  endforeach()
endfunction()

# norvik_part(NAME BOX folder...): an include root with only these folders of a box. NAME can be used in
# USES.
function(norvik_part name box)
  set(root "${CMAKE_BINARY_DIR}/boxes/${name}/${box}")
  file(MAKE_DIRECTORY "${root}")
  foreach(folder IN LISTS ARGN)
    file(CREATE_LINK "${CMAKE_SOURCE_DIR}/${box}/${folder}" "${root}/${folder}" SYMBOLIC)
  endforeach()
endfunction()

# norvik_sources(RESULT [EXCLUDE folder...] [ONLY folder...]): sources of the current folder and below
# it, without the subfolders of EXCLUDE or with only those of ONLY. Only one system compiles a folder
# mac/ or linux/; linux/ stands for all systems but macOS.
function(norvik_sources result)
  cmake_parse_arguments(ARG "" "" "EXCLUDE;ONLY" ${ARGN})
  file(GLOB_RECURSE found CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  foreach(excluded IN LISTS ARG_EXCLUDE)
    list(FILTER found EXCLUDE REGEX "^${CMAKE_CURRENT_SOURCE_DIR}/${excluded}")
  endforeach()
  if(ARG_ONLY)
    list(JOIN ARG_ONLY "|" wanted)
    list(FILTER found INCLUDE REGEX "^${CMAKE_CURRENT_SOURCE_DIR}/(${wanted})")
  endif()
  if(APPLE)
    list(FILTER found EXCLUDE REGEX "/linux/[^/]*$")
  else()
    list(FILTER found EXCLUDE REGEX "/mac/[^/]*$")
  endif()
  set(${result} "${found}" PARENT_SCOPE)
endfunction()
