# SPDX-License-Identifier: LGPL-2.1-or-later
#
# What the guide shows is what is compiled and tested, and nothing of it is missing.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

find_program(PYTHON python3)
if(NOT PYTHON)
    message(STATUS "Skipped: python3 is not installed")
    return()
endif()

set(script ${CMAKE_CURRENT_LIST_DIR}/guide.py)

# check(<tree>): leaves RESULT and OUTPUT.
function(check tree)
    execute_process(COMMAND ${PYTHON} ${script} ${tree}
        RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
    set(RESULT "${RESULT}" PARENT_SCOPE)
    set(OUTPUT "${OUTPUT}" PARENT_SCOPE)
endfunction()

# fresh_copy(): the guide with its recipes in a tree of its own.
set(copy ${WORK_DIR}/tree)
function(fresh_copy)
    file(REMOVE_RECURSE ${copy})
    file(COPY ${SOURCE_DIR}/docs/guide DESTINATION ${copy}/docs)
    file(COPY ${SOURCE_DIR}/examples/recipes DESTINATION ${copy}/examples)
endfunction()

# replace(<file> <text> <other text>): in the copy.
function(replace file text other)
    file(READ ${copy}/${file} content)
    string(REPLACE "${text}" "${other}" changed "${content}")
    if(changed STREQUAL content)
        message(FATAL_ERROR "${file} holds no ${text}")
    endif()
    file(WRITE ${copy}/${file} "${changed}")
endfunction()

check(${SOURCE_DIR})
expect_success()

# And it sees a difference.
set(page docs/guide/saving-json-atomically.md)

fresh_copy()
replace(${page} "file.flush()" "true")
check(${copy})
expect_failure_with("saving-json-atomically.md: shows what stands in no source")

fresh_copy()
replace(examples/recipes/saving-json-atomically/AtomicJson.cpp "file.flush()" "true")
check(${copy})
expect_failure_with("saving-json-atomically.md: shows what stands in no source")

fresh_copy()
replace(${page} "```cpp" "```text")
check(${copy})
expect_failure_with("saving-json-atomically.md: shows no C++")

fresh_copy()
replace(${page} "(../../examples/recipes/saving-json-atomically)" "()")
check(${copy})
expect_failure_with("saving-json-atomically.md: does not link its recipe")

fresh_copy()
replace(${page} "# Saving" "Saving")
check(${copy})
expect_failure_with("saving-json-atomically.md: has no title")

fresh_copy()
file(REMOVE ${copy}/${page})
check(${copy})
expect_failure_with("saving-json-atomically: has no page")

fresh_copy()
file(REMOVE_RECURSE ${copy}/examples/recipes/saving-json-atomically)
check(${copy})
expect_failure_with("saving-json-atomically: has no recipe")

fresh_copy()
replace(docs/guide/README.md "(saving-json-atomically.md)" "()")
check(${copy})
expect_failure_with("saving-json-atomically: is not linked in README.md")
