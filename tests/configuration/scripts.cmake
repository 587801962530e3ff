# SPDX-License-Identifier: LGPL-2.1-or-later
#
# What installs the dependencies says why it can't, and is silent where there is nothing to do. What builds
# and starts something ends as that does.

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

# The scripts that build and start something, in a tree where cmake makes a program that prints its
# arguments and ends as the test wants.
file(COPY ${SOURCE_DIR}/scripts DESTINATION ${WORK_DIR}/tree)
file(WRITE ${WORK_DIR}/program "#!/bin/sh\necho \"started: $*\"\nexit 7\n")
file(WRITE ${WORK_DIR}/good/cmake "#!/bin/sh
echo \"cmake $*\"
mkdir -p ${WORK_DIR}/tree/build/demo/localservices/program
cp ${WORK_DIR}/program ${WORK_DIR}/tree/build/demo/localservices/program/local-services
")
file(WRITE ${WORK_DIR}/bad/cmake "#!/bin/sh\necho 'no compiler'\nexit 1\n")
run(chmod +x ${WORK_DIR}/program ${WORK_DIR}/good/cmake ${WORK_DIR}/bad/cmake)
set(demo ${WORK_DIR}/tree/build/demo)

# run_script(<folder of cmake> <script> [ARGUMENT...]): leaves RESULT, OUTPUT and ERRORS.
function(run_script folder script)
    execute_process(
        COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/${folder}:${WORK_DIR}/all:$ENV{PATH} ${BASH}
            ${WORK_DIR}/tree/scripts/${script} ${ARGN}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    set(RESULT "${result}" PARENT_SCOPE)
    set(OUTPUT "${output}" PARENT_SCOPE)
    set(ERRORS "${errors}" PARENT_SCOPE)
endfunction()

run_script(bad local-services true)
set(OUTPUT "${ERRORS}")
expect_failure_with("build-demo: the build failed; all of it stands in ${demo}/build.log")
expect_failure_with("no compiler")
run_script(bad demo)
set(OUTPUT "${ERRORS}")
expect_failure_with("build-demo: the build failed")

run_script(good local-services --port 0 host --its own)
if(NOT RESULT EQUAL 7)
    message(FATAL_ERROR "The exit code is to be the program's; it is: ${RESULT} ${ERRORS}")
endif()
if(NOT OUTPUT STREQUAL "started: --folder ${demo}/local-services --port 0 host --its own\n")
    message(FATAL_ERROR "The standard output stream is the program's alone; it holds: ${OUTPUT}")
endif()
file(READ ${demo}/build.log log)
if(NOT log MATCHES "--target local-services\n")
    message(FATAL_ERROR "Only the program should be built: ${log}")
endif()

run_script(good demo)
if(NOT RESULT EQUAL 7)
    message(FATAL_ERROR "The exit code is to be the tour's; it is: ${RESULT} ${ERRORS}")
endif()
foreach(text "started: --folder ${demo}/local-services ${demo}/examples/tour/tour ${demo}/tour\n"
        "== Where to look next" "scripts/local-services")
    string(FIND "${OUTPUT}" "${text}" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "The demo should say \"${text}\"; it said: ${OUTPUT}")
    endif()
endforeach()
