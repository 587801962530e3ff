# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Builds the application of README and runs it twice.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

# code_block(<language> <first line> <variable>): sets the variable to the code block with that first line.
function(code_block language first_line variable)
    string(FIND "${readme}" "```${language}\n${first_line}" begin)
    if(begin EQUAL -1)
        message(FATAL_ERROR "README has no ${language} block that starts with ${first_line}")
    endif()
    string(SUBSTRING "${readme}" ${begin} -1 rest)
    string(FIND "${rest}" "\n```\n" end)
    string(SUBSTRING "${rest}" 0 ${end} block)
    string(REGEX REPLACE "^```${language}\n" "" block "${block}")
    set(${variable} "${block}\n" PARENT_SCOPE)
endfunction()

file(READ ${SOURCE_DIR}/README.md readme)
code_block(cmake "cmake_minimum_required" cmake)
code_block(cpp "#include" cpp)
file(WRITE ${WORK_DIR}/host/CMakeLists.txt "${cmake}")
file(WRITE ${WORK_DIR}/host/main.cpp "${cpp}")
file(CREATE_LINK ${SOURCE_DIR} ${WORK_DIR}/host/ZyBase SYMBOLIC)

configure(${WORK_DIR}/host ${WORK_DIR}/build)
expect_success()
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
foreach(expected 1 2)
    run(${CMAKE_COMMAND} -E env HOME=${WORK_DIR}/home XDG_DATA_HOME=${WORK_DIR}/home/.local/share ${WORK_DIR}/build/host)
    file(READ ${WORK_DIR}/home/.local/share/example/host/settings.json settings)
    if(NOT settings MATCHES "\"runs\": ${expected}\n")
        message(FATAL_ERROR "After run ${expected} the settings are: ${settings}")
    endif()
endforeach()
file(STRINGS ${WORK_DIR}/home/.local/share/example/host/log/host.log lines)
list(LENGTH lines count)
if(NOT count EQUAL 2 OR NOT lines MATCHES " INFO   - settings saved")
    message(FATAL_ERROR "After two runs the log is: ${lines}")
endif()
