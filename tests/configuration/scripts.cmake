# SPDX-License-Identifier: LGPL-2.1-or-later
#
# scripts/install-dependencies reports why it cannot install, and prints nothing if nothing is missing. The
# scripts that build and start a program return its exit code.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

set(script ${SOURCE_DIR}/scripts/install-dependencies)
find_program(BASH bash)
find_program(ENV_COMMAND env)

# A machine with basic commands and without apt.
file(MAKE_DIRECTORY ${WORK_DIR}/bin)
foreach(command cat dirname grep id sed)
    find_program(program_${command} ${command})
    file(CREATE_LINK ${program_${command}} ${WORK_DIR}/bin/${command} SYMBOLIC)
endforeach()
execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/bin ${BASH} ${script} build
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_failure_with("install-dependencies: dpkg-query is not installed.")

execute_process(COMMAND ${BASH} ${script} nonsense
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_failure_with("unknown group of packages: nonsense")

# Fake tools for three machines: "all" has every package, "none" has no network, "user" has an ordinary user
# without sudo, "old" has only the older package of each line with alternatives.
file(WRITE ${WORK_DIR}/all/dpkg-query "#!/bin/sh\necho installed\n")
file(WRITE ${WORK_DIR}/all/apt-get "#!/bin/sh\necho called\nexit 1\n")
file(WRITE ${WORK_DIR}/none/dpkg-query "#!/bin/sh\nexit 1\n")
file(WRITE ${WORK_DIR}/none/apt-get "#!/bin/sh\nexit 100\n")
file(WRITE ${WORK_DIR}/none/id "#!/bin/sh\necho 0\n")
file(WRITE ${WORK_DIR}/user/dpkg-query "#!/bin/sh\nexit 1\n")
file(WRITE ${WORK_DIR}/user/apt-get "#!/bin/sh\nexit 100\n")
file(WRITE ${WORK_DIR}/user/id "#!/bin/sh\necho 1000\n")
file(WRITE ${WORK_DIR}/user/apt-cache "#!/bin/sh\n[ \"$2\" = libquazip1-qt5-dev ] || echo Package: $2\n")
file(WRITE ${WORK_DIR}/sudo/sudo "#!/bin/sh\nexit 1\n")
file(WRITE ${WORK_DIR}/old/dpkg-query "#!/bin/sh\nexit 1\n")
file(WRITE ${WORK_DIR}/old/apt-get "#!/bin/sh\necho \"$*\" >>${WORK_DIR}/old.log\n")
file(WRITE ${WORK_DIR}/old/apt-cache "#!/bin/sh\n[ \"$2\" = libquazip1-qt5-dev ] || echo Package: $2\n")
file(WRITE ${WORK_DIR}/old/id "#!/bin/sh\necho 0\n")
file(GLOB fakes ${WORK_DIR}/all/* ${WORK_DIR}/none/* ${WORK_DIR}/user/* ${WORK_DIR}/sudo/* ${WORK_DIR}/old/*)
run(chmod +x ${fakes})

execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/all:$ENV{PATH} ${BASH} ${script} build test check
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_success()
if(NOT OUTPUT STREQUAL "")
    message(FATAL_ERROR "Should print nothing; printed: ${OUTPUT}")
endif()

execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/none:$ENV{PATH} ${BASH} ${script} build
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_failure_with("the package lists could not be loaded. Check the network.")

# The command to copy names packages of this distribution, and a program that is installed.
execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/user:${WORK_DIR}/sudo:$ENV{PATH} ${BASH} ${script} build
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT INPUT_FILE /dev/null)
expect_failure_with("installing packages needs root. Run:\n    sudo apt-get install --no-install-recommends cmake g++ ")
expect_failure_with(" libquazip5-dev ")
execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/user:${WORK_DIR}/bin ${BASH} ${script} build
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT INPUT_FILE /dev/null)
expect_failure_with("Run:\n    su -c 'apt-get install --no-install-recommends cmake g++ ")

# Of several alternatives, the first one in the distribution is installed.
file(REMOVE ${WORK_DIR}/old.log)
execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/old:$ENV{PATH} ${BASH} ${script} build
    RESULT_VARIABLE RESULT OUTPUT_VARIABLE OUTPUT ERROR_VARIABLE OUTPUT)
expect_success()
file(READ ${WORK_DIR}/old.log calls)
if(NOT calls MATCHES "install .* libquazip5-dev " OR calls MATCHES "libquazip1-qt5-dev")
    message(FATAL_ERROR "The older package should be installed; the calls were: ${calls}")
endif()

# The scripts that build and start a program, in a tree where a fake cmake creates a program that prints its
# arguments and returns 7.
file(COPY ${SOURCE_DIR}/scripts ${SOURCE_DIR}/CMakePresets.json DESTINATION ${WORK_DIR}/tree)
file(WRITE ${WORK_DIR}/program "#!/bin/sh\necho \"started: $*\"\nexit 7\n")
file(WRITE ${WORK_DIR}/good/cmake "#!/bin/sh
[ \"$1\" != --version ] || { echo 'cmake version 3.25.1'; exit; }
echo \"cmake $*\"
mkdir -p ${WORK_DIR}/tree/build/demo/localservices/program
cp ${WORK_DIR}/program ${WORK_DIR}/tree/build/demo/localservices/program/local-services
")
file(WRITE ${WORK_DIR}/bad/cmake "#!/bin/sh\necho 'no compiler'\nexit 1\n")
file(WRITE ${WORK_DIR}/older/cmake "#!/bin/sh
[ \"$1\" != --version ] || { echo 'cmake version 3.18.4'; exit; }
echo \"cmake $*\"
")
run(chmod +x ${WORK_DIR}/program ${WORK_DIR}/good/cmake ${WORK_DIR}/bad/cmake ${WORK_DIR}/older/cmake)
set(demo ${WORK_DIR}/tree/build/demo)

# run_script(<folder of cmake> <script> [ARGUMENT...]): sets RESULT, OUTPUT and ERRORS.
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
expect_failure_with("build-demo: the build failed; see ${demo}/build.log")
expect_failure_with("no compiler")
run_script(bad demo)
set(OUTPUT "${ERRORS}")
expect_failure_with("build-demo: the build failed")

run_script(good local-services --port 0 host --its own)
if(NOT RESULT EQUAL 7)
    message(FATAL_ERROR "Should return the program's exit code; returned: ${RESULT} ${ERRORS}")
endif()
if(NOT OUTPUT STREQUAL "started: --folder ${demo}/local-services --port 0 host --its own\n")
    message(FATAL_ERROR "The standard output should be the program's alone; it is: ${OUTPUT}")
endif()
file(READ ${demo}/build.log log)
if(NOT log MATCHES "--target local-services\n")
    message(FATAL_ERROR "Should build the program alone: ${log}")
endif()

run_script(good demo)
if(NOT RESULT EQUAL 7)
    message(FATAL_ERROR "Should return the tour's exit code; returned: ${RESULT} ${ERRORS}")
endif()
foreach(text "started: --folder ${demo}/local-services ${demo}/examples/tour/tour ${demo}/tour\n"
        "== What to try next" "scripts/local-services")
    string(FIND "${OUTPUT}" "${text}" position)
    if(position EQUAL -1)
        message(FATAL_ERROR "The demo should print \"${text}\"; it printed: ${OUTPUT}")
    endif()
endforeach()

# The demo names the gallery only if there is a display.
foreach(display "" ":1")
    set(ENV{DISPLAY} "${display}")
    unset(ENV{WAYLAND_DISPLAY})
    run_script(good demo)
    string(FIND "${OUTPUT}" "examples/gallery/gallery" position)
    if((position EQUAL -1 AND display) OR (NOT position EQUAL -1 AND NOT display))
        message(FATAL_ERROR "With the display \"${display}\" the demo printed: ${OUTPUT}")
    endif()
endforeach()

# CMake before 3.20 gets the preset's variables as options, with those of the presets that it inherits.
run_script(older configure ci -DEXTRA=1)
if(NOT OUTPUT MATCHES "^cmake -S . -B build/ci -G Ninja .*-DZYBASE_WARNINGS_AS_ERRORS=ON .*-DEXTRA=1\n$"
        OR NOT OUTPUT MATCHES "-DCMAKE_BUILD_TYPE=RelWithDebInfo" OR NOT OUTPUT MATCHES "-DBUILD_TESTING=ON")
    message(FATAL_ERROR "The options of an older cmake are: ${OUTPUT} ${ERRORS}")
endif()
run_script(older configure nonsense)
set(OUTPUT "${ERRORS}")
expect_failure_with("CMakePresets.json has no preset nonsense")
run_script(good configure ci -DEXTRA=1)
if(NOT OUTPUT STREQUAL "cmake --preset ci -DEXTRA=1\n")
    message(FATAL_ERROR "The options of a recent cmake are: ${OUTPUT} ${ERRORS}")
endif()
