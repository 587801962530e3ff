# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Finds cpp-httplib, compiled as distributions carry it (with the macros it was compiled with) or
# as the bare header. Leaves Httplib_FOUND, Httplib_VERSION and the target Httplib::httplib.

find_package(PkgConfig QUIET)
if(PKG_CONFIG_FOUND)
    pkg_check_modules(Httplib_PC QUIET IMPORTED_TARGET cpp-httplib)
endif()

find_path(Httplib_INCLUDE_DIR NAMES httplib.h HINTS ${Httplib_PC_INCLUDE_DIRS})
mark_as_advanced(Httplib_INCLUDE_DIR)
if(Httplib_INCLUDE_DIR)
    file(STRINGS "${Httplib_INCLUDE_DIR}/httplib.h" Httplib_VERSION_LINE REGEX "define CPPHTTPLIB_VERSION \"")
    string(REGEX REPLACE ".*\"([0-9.]+).*\".*" "\\1" Httplib_VERSION "${Httplib_VERSION_LINE}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Httplib
    REQUIRED_VARS Httplib_INCLUDE_DIR
    VERSION_VAR Httplib_VERSION)

if(Httplib_FOUND AND NOT TARGET Httplib::httplib)
    add_library(Httplib::httplib INTERFACE IMPORTED)
    if(Httplib_PC_FOUND)
        set_target_properties(Httplib::httplib PROPERTIES
            INTERFACE_LINK_LIBRARIES PkgConfig::Httplib_PC)
    else()
        set_target_properties(Httplib::httplib PROPERTIES
            INTERFACE_INCLUDE_DIRECTORIES "${Httplib_INCLUDE_DIR}")
    endif()
endif()
