# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Verifies that docs/doxygen/check-translations reports a translation of an older page. The copy of the tree is
# no git repository.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

set(tree ${WORK_DIR}/tree)
set(script ${tree}/docs/doxygen/check-translations)
file(COPY ${SOURCE_DIR}/docs ${SOURCE_DIR}/README.md ${SOURCE_DIR}/README.zh_CN.md DESTINATION ${tree})

# check([ARGUMENT...]): runs the script; sets RESULT and OUTPUT.
function(check)
    execute_process(COMMAND ${script} ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    set(RESULT "${result}" PARENT_SCOPE)
    set(OUTPUT "${output}" PARENT_SCOPE)
endfunction()

check()
expect_success()

file(APPEND ${tree}/docs/security.md "\nA new sentence.\n")
check()
expect_failure_with("docs/zh_CN/security.md: docs/security.md has changed")
check(--accept docs/zh_CN/security.md)
expect_success()
check()
expect_success()

file(WRITE ${tree}/docs/zh_CN/new.md "# New\n")
check()
expect_failure_with("docs/zh_CN/new.md: its first line names no English page")
