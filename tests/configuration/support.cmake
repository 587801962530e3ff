# SPDX-License-Identifier: LGPL-2.1-or-later

file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")

# configure(<source> <build> [OPTION...]): sets RESULT (0 for success) and OUTPUT, all on one line.
function(configure source build)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -S "${source}" -B "${build}" -G "${GENERATOR}" -DCMAKE_BUILD_TYPE=Debug ${ARGN}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    # CMake wraps messages and puts two spaces after a full stop.
    string(REGEX REPLACE "[ \n]+" " " output "${output}")
    set(RESULT "${result}" PARENT_SCOPE)
    set(OUTPUT "${output}" PARENT_SCOPE)
endfunction()

function(expect_failure_with text)
    if(RESULT EQUAL 0)
        message(FATAL_ERROR "The command should fail; it printed: ${OUTPUT}")
    endif()
    string(FIND "${OUTPUT}" "${text}" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "The command should print \"${text}\"; it printed: ${OUTPUT}")
    endif()
endfunction()

function(expect_success)
    if(NOT RESULT EQUAL 0)
        message(FATAL_ERROR "The command should succeed; it printed: ${OUTPUT}")
    endif()
endfunction()

# run(COMMAND...): sets OUTPUT; the test fails if the command fails.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN} failed: ${output}")
    endif()
    set(OUTPUT "${output}" PARENT_SCOPE)
endfunction()
