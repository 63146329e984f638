# Fails when a shared library hands out a name that is none of its own.
#
#   cmake -DNM=<nm> -DLIBRARY=<file> -DHEADERS=<folder> -P ExportedNames.cmake
#
# Its own are the classes and objects that its public headers are named after, and the functions
# beside them.
execute_process(COMMAND "${NM}" -D -C --defined-only "${LIBRARY}"
  OUTPUT_VARIABLE listed RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "cannot read ${LIBRARY}")
endif()

file(GLOB headers "${HEADERS}/*.h")
set(own "Kel[A-Za-z]+|ZetNorvdrhxch")
foreach(header ${headers})
  cmake_path(GET header STEM name)
  string(APPEND own "|${name}")
endforeach()

string(REPLACE ";" "," listed "${listed}")
string(REGEX REPLACE "[][]" "" listed "${listed}")
string(REPLACE "\n" ";" lines "${listed}")
set(count 0)
foreach(line ${lines})
  # "address type name"
  if(NOT line MATCHES "^[0-9a-f]+ (.) (.*)$")
    continue()
  endif()
  set(type "${CMAKE_MATCH_1}")
  set(name "${CMAKE_MATCH_2}")
  # What the sanitizers add.
  if(name MATCHES "^__")
    continue()
  endif()
  math(EXPR count "${count} + 1")
  string(REGEX REPLACE "^(vtable|typeinfo|typeinfo name) for " "" bare "${name}")
  if(type STREQUAL "u" OR NOT bare MATCHES "^(${own})(::|\\(|abi|$)")
    message(SEND_ERROR "not its own: ${type} ${name}")
  endif()
endforeach()
if(count LESS 30)
  message(SEND_ERROR "only ${count} names are there")
endif()
message(STATUS "${count} names")
