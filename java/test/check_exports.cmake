# Compares the defined dynamic symbols of LIBRARY (nm -D --defined-only) with
# the names listed in EXPECTED, one per line.
execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY}
  OUTPUT_VARIABLE listing RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${NM} failed on ${LIBRARY}")
endif()

string(REPLACE "\n" ";" lines "${listing}")
set(actual "")
foreach(line ${lines})
  # "<address> <type> <name>[@version]"
  if(line MATCHES "^[0-9a-fA-F]* *[A-Za-z] ([^ @]+)")
    list(APPEND actual ${CMAKE_MATCH_1})
  endif()
endforeach()

file(STRINGS ${EXPECTED} expected REGEX "^[^#]")
list(SORT actual)
list(SORT expected)
list(REMOVE_DUPLICATES actual)

set(extra ${actual})
list(REMOVE_ITEM extra ${expected})
set(missing ${expected})
list(REMOVE_ITEM missing ${actual})
list(LENGTH actual count)
if(extra OR missing)
  message(FATAL_ERROR "exported symbols differ\n  not expected: ${extra}\n  missing: ${missing}")
endif()
message(STATUS "${count} exported symbols, as expected")
