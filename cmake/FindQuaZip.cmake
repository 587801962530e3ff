# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Finds QuaZip for Qt 5: by the CMake package of 1.x (QuaZip-Qt5), or by its headers and library if it has no
# package, as 0.9 (quazip5). Sets QuaZip_FOUND and defines the target QuaZip::QuaZip.

find_package(QuaZip-Qt5 QUIET CONFIG)

if(TARGET QuaZip::QuaZip)
    set(QuaZip_FOUND TRUE)
else()
    find_path(QuaZip_INCLUDE_DIR NAMES quazip.h
        PATH_SUFFIXES quazip5 QuaZip-Qt5-1.4/quazip QuaZip-Qt5-1.3/quazip QuaZip-Qt5-1.2/quazip
            QuaZip-Qt5-1.1/quazip QuaZip-Qt5-1.0/quazip quazip)
    find_library(QuaZip_LIBRARY NAMES quazip1-qt5 quazip5)
    find_package(ZLIB QUIET)
    mark_as_advanced(QuaZip_INCLUDE_DIR QuaZip_LIBRARY)
    include(FindPackageHandleStandardArgs)
    find_package_handle_standard_args(QuaZip
        REQUIRED_VARS QuaZip_LIBRARY QuaZip_INCLUDE_DIR ZLIB_FOUND)
    if(QuaZip_FOUND)
        add_library(QuaZip::QuaZip UNKNOWN IMPORTED)
        set_target_properties(QuaZip::QuaZip PROPERTIES
            IMPORTED_LOCATION "${QuaZip_LIBRARY}"
            INTERFACE_INCLUDE_DIRECTORIES "${QuaZip_INCLUDE_DIR}"
            INTERFACE_LINK_LIBRARIES "ZLIB::ZLIB")
    endif()
endif()
