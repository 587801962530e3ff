# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Finds libqrencode 3 or 4. Sets QREncode_FOUND and defines the target QREncode::QREncode.

find_path(QREncode_INCLUDE_DIR NAMES qrencode.h)
find_library(QREncode_LIBRARY NAMES qrencode)
mark_as_advanced(QREncode_INCLUDE_DIR QREncode_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(QREncode REQUIRED_VARS QREncode_LIBRARY QREncode_INCLUDE_DIR)

if(QREncode_FOUND AND NOT TARGET QREncode::QREncode)
    add_library(QREncode::QREncode UNKNOWN IMPORTED)
    set_target_properties(QREncode::QREncode PROPERTIES
        IMPORTED_LOCATION "${QREncode_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${QREncode_INCLUDE_DIR}")
endif()
