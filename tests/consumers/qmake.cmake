# SPDX-License-Identifier: LGPL-2.1-or-later

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

find_program(QMAKE NAMES qmake-qt5 qmake PATHS /usr/lib/qt5/bin REQUIRED)
set(ENV{QMAKEPATH} ${PREFIX})
set(ENV{QT_SELECT} qt5)
run(${QMAKE} -o ${WORK_DIR}/Makefile ${CMAKE_CURRENT_LIST_DIR}/qmake/consumer.pro LOG4QT=${LOG4QT})
run(make -C ${WORK_DIR})
set(ENV{LD_LIBRARY_PATH} ${PREFIX}/${LIBDIR}:$ENV{LD_LIBRARY_PATH})
expect_consumer_works(${WORK_DIR}/consumer)
