# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Verifies that every script prints help with --help, rejects unknown arguments with one line, and starts
# nothing in either case.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

find_program(ENV_COMMAND env)

# Fake tools that record a call.
foreach(tool cmake apt-get sudo unshare dpkg-buildpackage)
    file(WRITE ${WORK_DIR}/bin/${tool} "#!/bin/sh\necho ${tool} >>${WORK_DIR}/calls\nexit 1\n")
endforeach()
file(GLOB tools ${WORK_DIR}/bin/*)
run(chmod +x ${tools})

# call(<script> <argument>): sets RESULT, OUTPUT and ERRORS.
function(call script argument)
    execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/bin:$ENV{PATH} ${script} ${argument}
        WORKING_DIRECTORY ${WORK_DIR} TIMEOUT 60
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    set(RESULT "${result}" PARENT_SCOPE)
    set(OUTPUT "${output}" PARENT_SCOPE)
    set(ERRORS "${errors}" PARENT_SCOPE)
endfunction()

file(GLOB files RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/scripts/* ${SOURCE_DIR}/packaging/*)
set(count 0)
foreach(script ${files})
    get_filename_component(name ${script} NAME)
    if(IS_DIRECTORY ${SOURCE_DIR}/${script} OR name MATCHES "\\.")
        continue()
    endif()
    math(EXPR count "${count} + 1")

    foreach(argument --help -h)
        call(${SOURCE_DIR}/${script} ${argument})
        if(NOT RESULT EQUAL 0 OR NOT OUTPUT MATCHES "^[A-Z].*\n\n    ${script}" OR NOT ERRORS STREQUAL "")
            message(SEND_ERROR "${script} ${argument} returned ${RESULT} and printed: ${OUTPUT}${ERRORS}")
        endif()
    endforeach()

    call(${SOURCE_DIR}/${script} --nonsense)
    if(RESULT EQUAL 0 OR NOT OUTPUT STREQUAL ""
            OR NOT ERRORS MATCHES "^${name}: unknown [a-z ]+ --nonsense[^\n]*\n$")
        message(SEND_ERROR "${script} --nonsense returned ${RESULT} and printed: ${OUTPUT}${ERRORS}")
    endif()
endforeach()
if(count LESS 20)
    message(FATAL_ERROR "Only ${count} scripts were found")
endif()
if(EXISTS ${WORK_DIR}/calls)
    file(READ ${WORK_DIR}/calls calls)
    message(FATAL_ERROR "A call for help or with an unknown argument started: ${calls}")
endif()
