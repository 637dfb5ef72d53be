# Installs the public headers: lKestrinDb.h and each header of the library that it reaches, in their folders. A header
# becomes public by being included from there and by nothing else, so this list is walked and not written down.

cmake_policy(VERSION 3.25)

set(waiting lKestrinDb.h)
set(reached ${waiting})
while(waiting)
  list(POP_FRONT waiting header)
  get_filename_component(folder "${header}" DIRECTORY)
  file(INSTALL "${KESTRIN_HEADERS}/${header}" DESTINATION "${CMAKE_INSTALL_PREFIX}/${KESTRIN_INCLUDEDIR}/${folder}")
  file(STRINGS "${KESTRIN_HEADERS}/${header}" lines REGEX "^#include \"")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^#include \"([^\"]*)\".*" "\\1" next "${line}")
    if(NOT next IN_LIST reached)
      list(APPEND reached "${next}")
      list(APPEND waiting "${next}")
    endif()
  endforeach()
endwhile()
