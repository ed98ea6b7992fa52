# Compares the symbols that a built library exports with the list of those that it should export.
#
#   cmake -DLIBRARY=<file> -DNM=<nm> -DREADELF=<readelf> -DSYMBOLS=<list> -DSONAME=<name> -P <this file>

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
    OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE " [^\n]*" "" found "${lines}")
string(REGEX MATCHALL "[^\n]+" found "${found}")
list(SORT found)
file(STRINGS ${SYMBOLS} expected)
if(NOT found STREQUAL expected)
    message(SEND_ERROR "exported: ${found}\nexpected: ${expected}")
endif()

execute_process(COMMAND ${READELF} -d ${LIBRARY}
    OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "\\(SONAME\\)[^\n]*\\[${SONAME}\\]")
    message(SEND_ERROR "the SONAME is not ${SONAME}:\n${dynamic}")
endif()
if(dynamic MATCHES "\\((RPATH|RUNPATH)\\)[^\n]*")
    message(SEND_ERROR "the library looks for others at a fixed place: ${CMAKE_MATCH_0}")
endif()
