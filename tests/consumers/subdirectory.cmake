# SPDX-License-Identifier: LGPL-2.1-or-later

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

set(host ${CMAKE_CURRENT_LIST_DIR}/subdirectory)
configure(${host} ${WORK_DIR}/build -DZYBASE_SOURCE=${SOURCE_DIR})
expect_success()
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
expect_consumer_works(${WORK_DIR}/build/consumer)

# An application builds the library and its dependencies, but no programs, and installs nothing of it.
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build --target help)
if(OUTPUT MATCHES "tour|tst_|localservices|gallery|notekeeper|recipe")
    message(FATAL_ERROR "The targets should be the library's alone: ${OUTPUT}")
endif()
run(${CMAKE_COMMAND} --install ${WORK_DIR}/build --prefix ${WORK_DIR}/installed)
if(EXISTS ${WORK_DIR}/installed)
    message(FATAL_ERROR "The installation of the application contains files of the library")
endif()

# The same with FetchContent, from an archive.
file(COPY ${SOURCE_DIR}/CMakeLists.txt ${SOURCE_DIR}/cmake ${SOURCE_DIR}/ZyBase ${SOURCE_DIR}/log4qt
    DESTINATION ${WORK_DIR}/archive)
run(${CMAKE_COMMAND} -E chdir ${WORK_DIR} ${CMAKE_COMMAND} -E tar czf archive.tar.gz archive)
configure(${host} ${WORK_DIR}/fetched -DFETCH=ON -DZYBASE_SOURCE=${WORK_DIR}/archive.tar.gz)
expect_success()
run(${CMAKE_COMMAND} --build ${WORK_DIR}/fetched --target consumer)
expect_consumer_works(${WORK_DIR}/fetched/consumer)
