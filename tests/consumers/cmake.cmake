# SPDX-License-Identifier: LGPL-2.1-or-later

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

configure(${CMAKE_CURRENT_LIST_DIR}/cmake ${WORK_DIR}/build
    -DCMAKE_PREFIX_PATH=${PREFIX} -DREQUIRED_VERSION=${VERSION})
expect_success()
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
expect_consumer_works(${WORK_DIR}/build/consumer)

# An application that requires a later version is rejected.
configure(${CMAKE_CURRENT_LIST_DIR}/cmake ${WORK_DIR}/later -DCMAKE_PREFIX_PATH=${PREFIX} -DREQUIRED_VERSION=99)
expect_failure_with("compatible with requested version \"99\"")
