# SPDX-License-Identifier: LGPL-2.1-or-later
#
# What installs the dependencies says why it can't, and is silent where there is nothing to do.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

set(script ${SOURCE_DIR}/scripts/install-dependencies)
find_program(BASH bash)
find_program(ENV_COMMAND env)

# A machine with the basic commands and no apt.
file(MAKE_DIRECTORY ${WORK_DIR}/bin)
foreach(command dirname grep id)
    find_program(program_${command} ${command})
    file(CREATE_LINK ${program_${command}} ${WORK_DIR}/bin/${command} SYMBOLIC)
endforeach()
execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/bin ${BASH} ${script} build
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_failure_with("install-dependencies: this machine has no dpkg-query")

execute_process(COMMAND ${BASH} ${script} nonsense
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_failure_with("no such group of packages: nonsense")

# With every package there, nothing is called that could change the machine. Where one is missing, the
# stand-ins are what an ordinary user without sudo and a machine without a network have.
file(WRITE ${WORK_DIR}/all/dpkg-query "#!/bin/sh\necho installed\n")
file(WRITE ${WORK_DIR}/all/apt-get "#!/bin/sh\necho called\nexit 1\n")
file(WRITE ${WORK_DIR}/none/dpkg-query "#!/bin/sh\nexit 1\n")
file(WRITE ${WORK_DIR}/none/apt-get "#!/bin/sh\nexit 100\n")
file(WRITE ${WORK_DIR}/none/id "#!/bin/sh\necho 0\n")
file(WRITE ${WORK_DIR}/user/dpkg-query "#!/bin/sh\nexit 1\n")
file(WRITE ${WORK_DIR}/user/apt-get "#!/bin/sh\nexit 100\n")
file(WRITE ${WORK_DIR}/user/id "#!/bin/sh\necho 1000\n")
file(WRITE ${WORK_DIR}/user/sudo "#!/bin/sh\nexit 1\n")
file(GLOB fakes ${WORK_DIR}/all/* ${WORK_DIR}/none/* ${WORK_DIR}/user/*)
run(chmod +x ${fakes})

execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/all:$ENV{PATH} ${BASH} ${script} build test check
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_success()
if(NOT OUTPUT STREQUAL "")
    message(FATAL_ERROR "Nothing to do, nothing to say; it said: ${OUTPUT}")
endif()

execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/none:$ENV{PATH} ${BASH} ${script} build
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_failure_with("the package lists can't be had; is there a network?")

execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/user:$ENV{PATH} ${BASH} ${script} build
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_failure_with("sudo refused; run as root or install by hand: apt-get update")
