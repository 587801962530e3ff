# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Compiles for 64-bit ARM on another Debian or Ubuntu machine, with the packages crossbuild-essential-arm64 and the
# libraries' packages of that architecture: cmake --toolchain cmake/arm64.cmake ...

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(PKG_CONFIG_EXECUTABLE aarch64-linux-gnu-pkg-config)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
