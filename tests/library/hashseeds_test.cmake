# The same messages must give the same bytes in every process: nothing may depend on the order of
# Qt's hash tables, which is different in each process.
#
#   cmake -DPROGRAM=<convertfiles> -DMESSAGES=<folder>;<folder> -P <this file>

foreach(folder IN LISTS MESSAGES)
    # The name of the folder may hold brackets, which a pattern would take for its own.
    string(REGEX REPLACE "([][*?])" "[\\1]" pattern "${folder}/")
    file(GLOB_RECURSE found ${pattern}*.adexp)
    if(NOT found)
        message(FATAL_ERROR "no messages in ${folder}")
    endif()
    list(APPEND messages ${found})
endforeach()

function(convert variable)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env ${ARGN} ${PROGRAM} ${messages}
        OUTPUT_VARIABLE documents ERROR_VARIABLE reports COMMAND_ERROR_IS_FATAL ANY)
    # Qt complains of every fixed seed but 0: Qt 5 takes it, without ending its line, Qt 6 does not.
    string(REGEX REPLACE "QT_HASH_SEED: [^.\n]*\\.\n?" "" reports "${reports}")
    if(NOT documents MATCHES "<ADEXP_XML ")
        message(FATAL_ERROR "there are no documents: ${documents}")
    endif()
    set(${variable} "${documents}${reports}" PARENT_SCOPE)
endfunction()

convert(expected QT_HASH_SEED=0)
foreach(environment IN ITEMS QT_HASH_SEED=1 QT_HASH_SEED=7 --unset=QT_HASH_SEED --unset=QT_HASH_SEED)
    convert(result ${environment})
    if(NOT result STREQUAL expected)
        message(SEND_ERROR "${environment}: not what it is with QT_HASH_SEED=0")
    endif()
endforeach()
