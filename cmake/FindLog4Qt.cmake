# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Finds an installed log4qt, by its own CMake package or, where it was installed by hand, by
# its header and library. Leaves Log4Qt_FOUND, Log4Qt_VERSION and the target Log4Qt::log4qt.

find_package(Log4Qt ${Log4Qt_FIND_VERSION} QUIET CONFIG)

if(NOT Log4Qt_FOUND)
    find_path(Log4Qt_INCLUDE_DIR NAMES log4qt/logger.h)
    find_library(Log4Qt_LIBRARY NAMES log4qt)
    mark_as_advanced(Log4Qt_INCLUDE_DIR Log4Qt_LIBRARY)
    if(NOT Log4Qt_VERSION)
        # A hand-made install carries no version that could be read.
        set(Log4Qt_VERSION "${Log4Qt_FIND_VERSION}")
    endif()
    include(FindPackageHandleStandardArgs)
    find_package_handle_standard_args(Log4Qt
        REQUIRED_VARS Log4Qt_LIBRARY Log4Qt_INCLUDE_DIR
        VERSION_VAR Log4Qt_VERSION)
    if(Log4Qt_FOUND AND NOT TARGET Log4Qt::log4qt)
        add_library(Log4Qt::log4qt UNKNOWN IMPORTED)
        set_target_properties(Log4Qt::log4qt PROPERTIES
            IMPORTED_LOCATION "${Log4Qt_LIBRARY}"
            INTERFACE_INCLUDE_DIRECTORIES "${Log4Qt_INCLUDE_DIR}")
    endif()
endif()
