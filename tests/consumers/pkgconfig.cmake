# SPDX-License-Identifier: LGPL-2.1-or-later

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

pkg_config(--modversion version)
if(NOT version STREQUAL VERSION)
    message(FATAL_ERROR "pkg-config reports version ${version} instead of ${VERSION}")
endif()
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
run(make -C ${WORK_DIR} -f ${CMAKE_CURRENT_LIST_DIR}/pkgconfig/Makefile CXX=${CXX} LOG4QT=${LOG4QT})
set(ENV{LD_LIBRARY_PATH} ${PREFIX}/${LIBDIR}:$ENV{LD_LIBRARY_PATH})
expect_consumer_works(${WORK_DIR}/consumer)
