# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Finds an installed log4qt 1.x: by its CMake package, or by its header and library if it has no package
# or the package does not load. Sets Log4Qt_FOUND and Log4Qt_VERSION and defines the target Log4Qt::log4qt.

# The package of log4qt 1.5 links Qt5::Core and Qt5::Concurrent, but does not look for them.
foreach(Log4Qt_QT_MODULE Core Concurrent)
    find_package(Qt5${Log4Qt_QT_MODULE} QUIET CONFIG HINTS "${Qt5_DIR}/..")
endforeach()

# log4qt 2 needs Qt 6.
set(Log4Qt_VERSION_RANGE "${Log4Qt_FIND_VERSION}")
if(Log4Qt_VERSION_RANGE AND NOT CMAKE_VERSION VERSION_LESS 3.19)
    string(APPEND Log4Qt_VERSION_RANGE "...<2")
endif()
find_package(Log4Qt ${Log4Qt_VERSION_RANGE} QUIET CONFIG)

if(Log4Qt_FOUND)
    # Without Qt5Concurrent only the header and library are used: no header includes a file of it.
    get_target_property(Log4Qt_LINKED Log4Qt::log4qt INTERFACE_LINK_LIBRARIES)
    if(NOT TARGET Qt5::Concurrent AND "Qt5::Concurrent" IN_LIST Log4Qt_LINKED)
        list(REMOVE_ITEM Log4Qt_LINKED Qt5::Concurrent)
        set_target_properties(Log4Qt::log4qt PROPERTIES INTERFACE_LINK_LIBRARIES "${Log4Qt_LINKED}")
    endif()
    return()
endif()

# The header and library of a package of another version are not used.
foreach(Log4Qt_OTHER_VERSION IN LISTS Log4Qt_CONSIDERED_VERSIONS)
    if(Log4Qt_OTHER_VERSION STREQUAL "unknown")
        continue()
    endif()
    if(Log4Qt_OTHER_VERSION VERSION_LESS "${Log4Qt_FIND_VERSION}" OR NOT Log4Qt_OTHER_VERSION VERSION_LESS 2)
        return()
    endif()
endforeach()

find_path(Log4Qt_INCLUDE_DIR NAMES log4qt/logger.h)
find_library(Log4Qt_LIBRARY NAMES log4qt)
mark_as_advanced(Log4Qt_INCLUDE_DIR Log4Qt_LIBRARY)
# Neither of them contains the version.
set(Log4Qt_VERSION "${Log4Qt_FIND_VERSION}")
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
