# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Verifies that each page of the guide shows code of its recipe, and names the files to build.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

find_program(PYTHON python3)
if(NOT PYTHON)
    message(STATUS "Skipped: python3 is not installed")
    return()
endif()

set(script ${CMAKE_CURRENT_LIST_DIR}/guide.py)

# check(<tree>): runs guide.py; sets RESULT and OUTPUT.
function(check tree)
    execute_process(COMMAND ${PYTHON} ${script} ${tree}
        RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
    set(RESULT "${RESULT}" PARENT_SCOPE)
    set(OUTPUT "${OUTPUT}" PARENT_SCOPE)
endfunction()

# make_copy(): copies the guide and its recipes.
set(copy ${WORK_DIR}/tree)
function(make_copy)
    file(REMOVE_RECURSE ${copy})
    file(COPY ${SOURCE_DIR}/docs/guide DESTINATION ${copy}/docs)
    file(COPY ${SOURCE_DIR}/examples/notekeeper ${SOURCE_DIR}/examples/recipes DESTINATION ${copy}/examples)
endfunction()

# expect_problem(<file> <string> <replacement> <problem>): verifies that a copy with the replacement has
# this problem.
function(expect_problem file string replacement problem)
    make_copy()
    file(READ ${copy}/${file} content)
    string(REPLACE "${string}" "${replacement}" changed "${content}")
    if(changed STREQUAL content)
        message(FATAL_ERROR "${file} does not contain ${string}")
    endif()
    file(WRITE ${copy}/${file} "${changed}")
    check(${copy})
    expect_failure_with("${problem}")
endfunction()

check(${SOURCE_DIR})
expect_success()

set(name saving-json-atomically)
set(page docs/guide/${name}.md)
set(source examples/recipes/${name}/AtomicJson.cpp)
expect_problem(${page} "file.flush()" "true" "${name}.md: shows code that is not in ${name}")
expect_problem(${source} "file.flush()" "true" "${name}.md: shows code that is not in ${name}")
expect_problem(${page} "```cpp" "```text" "${name}.md: shows no C++")
expect_problem(${page} "(../../examples/recipes/${name})" "()" "${name}.md: does not link its recipe")
expect_problem(${page} "# Saving" "Saving" "${name}.md: has no title")
expect_problem(${page} "```cmake" "```text" "${name}.md: names no files for CMake")
expect_problem(${page} "HEADERS +=" "# " "${name}.md: names other files for qmake")
expect_problem(${page} "AtomicJson.h" "Json.h"
    "${name}.md: names a file for CMake that the recipe does not have")
expect_problem(docs/guide/watching-the-theme.md "AUTOMOC ON" "AUTOMOC OFF"
    "watching-the-theme.md: sets AUTOMOC")
expect_problem(docs/guide/README.md "(${name}.md)" "()" "${name}: is not linked in README.md")
expect_problem(docs/guide/putting-it-together.md "captureMessages();" "capture();"
    "putting-it-together.md: shows code that is not in notekeeper")

make_copy()
file(REMOVE ${copy}/${page})
check(${copy})
expect_failure_with("${name}: has no page")

make_copy()
file(REMOVE_RECURSE ${copy}/examples/recipes/${name})
check(${copy})
expect_failure_with("${name}: has no recipe")
