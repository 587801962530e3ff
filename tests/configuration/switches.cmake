# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Verifies the targets for each option. Inside another project, only the library is built.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

function(expect_targets build)
    run(${CMAKE_COMMAND} --build ${build} --target help)
    foreach(expectation ${ARGN})
        string(REGEX MATCH "^(!?)(.*)$" ignored "${expectation}")
        set(unwanted "${CMAKE_MATCH_1}")
        set(target "${CMAKE_MATCH_2}")
        string(REGEX MATCH "(^|\n) *(\\.\\.\\. )?${target}(:| |\n)" found "${OUTPUT}")
        if((found AND unwanted) OR (NOT found AND NOT unwanted))
            message(FATAL_ERROR "Expected ${expectation} among the targets of ${build}: ${OUTPUT}")
        endif()
    endforeach()
endfunction()

configure(${SOURCE_DIR} ${WORK_DIR}/default)
expect_success()
expect_targets(${WORK_DIR}/default ZyBase tour tst_logger !bench_logger)

configure(${SOURCE_DIR} ${WORK_DIR}/bare -DBUILD_TESTING=OFF -DZYBASE_BUILD_EXAMPLES=OFF)
expect_success()
expect_targets(${WORK_DIR}/bare ZyBase !tour !tst_logger !bench_logger)

configure(${SOURCE_DIR} ${WORK_DIR}/odd -DZYBASE_LOG4QT=mine)
expect_failure_with("ZYBASE_LOG4QT is \"mine\": it takes auto, system or own.")

configure(${SOURCE_DIR} ${WORK_DIR}/static -DBUILD_SHARED_LIBS=OFF)
expect_failure_with("BUILD_SHARED_LIBS is OFF: ZyBase is a shared library only.")

file(WRITE ${WORK_DIR}/host/CMakeLists.txt
    "cmake_minimum_required(VERSION 3.16)\n"
    "project(host LANGUAGES CXX)\n"
    "add_subdirectory(\"${SOURCE_DIR}\" ZyBase)\n"
    "add_executable(host main.cpp)\n"
    "target_link_libraries(host PRIVATE ZyBase::ZyBase)\n")
file(WRITE ${WORK_DIR}/host/main.cpp "int main() { return 0; }\n")
configure(${WORK_DIR}/host ${WORK_DIR}/inside)
expect_success()
expect_targets(${WORK_DIR}/inside ZyBase !tour !tst_logger)
