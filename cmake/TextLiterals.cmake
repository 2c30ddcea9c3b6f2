# norvik_text_literals(RESULT FILE): sets RESULT to the text of a file and RESULT_PIECES to it as literals of
# C++. A change of the file configures the build again.
function(norvik_text_literals result file)
  file(READ "${file}" text)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  string(LENGTH "${text}" length)
  set(pieces)
  # A literal may have 65,536 bytes.
  foreach(begin RANGE 0 ${length} 50000)
    string(SUBSTRING "${text}" ${begin} 50000 piece)
    string(APPEND pieces "R\"data(${piece})data\",\n")
  endforeach()
  set(${result} "${text}" PARENT_SCOPE)
  set(${result}_PIECES "${pieces}" PARENT_SCOPE)
endfunction()
