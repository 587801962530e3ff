# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Verifies that the message for a missing dependency names its package.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

configure(${SOURCE_DIR} ${WORK_DIR}/qt -DCMAKE_DISABLE_FIND_PACKAGE_Qt5=ON)
expect_failure_with(
    "Missing: Qt5 5.11 or later with Core, Gui, Network. Install the Debian package qtbase5-dev.")

configure(${SOURCE_DIR} ${WORK_DIR}/quazip -DCMAKE_DISABLE_FIND_PACKAGE_QuaZip=ON)
expect_failure_with("Missing: QuaZip 0.9 or later. Install the Debian package libquazip1-qt5-dev.")

configure(${SOURCE_DIR} ${WORK_DIR}/qrencode -DCMAKE_DISABLE_FIND_PACKAGE_QREncode=ON)
expect_failure_with("Missing: QREncode 3 or later. Install the Debian package libqrencode-dev.")

configure(${SOURCE_DIR} ${WORK_DIR}/log4qt -DZYBASE_LOG4QT=system -DCMAKE_DISABLE_FIND_PACKAGE_Log4Qt=ON)
expect_failure_with("Missing: log4qt 1.5 or later.")

configure(${SOURCE_DIR} ${WORK_DIR}/benchmark -DZYBASE_BUILD_BENCHMARKS=ON -DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON)
expect_failure_with("Missing: benchmark 1.6 or later. Install the Debian package libbenchmark-dev.")

configure(${SOURCE_DIR} ${WORK_DIR}/doxygen -DZYBASE_BUILD_DOCS=ON -DCMAKE_DISABLE_FIND_PACKAGE_Doxygen=ON)
expect_failure_with("Missing: Doxygen 1.9.4 or later. Install the Debian package doxygen.")
