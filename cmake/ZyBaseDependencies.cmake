# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Finds the dependencies. If one is missing, the configuration ends with one line that names it and its Debian
# package.

# zybase_require(<name> <version> [COMPONENTS <component>...] PACKAGE <Debian package>)
macro(zybase_require name version)
    cmake_parse_arguments(ZYBASE_REQUIRE "" "PACKAGE" "COMPONENTS" ${ARGN})
    if(ZYBASE_REQUIRE_COMPONENTS)
        find_package(${name} ${version} QUIET COMPONENTS ${ZYBASE_REQUIRE_COMPONENTS})
    else()
        find_package(${name} ${version} QUIET)
    endif()
    if(NOT ${name}_FOUND)
        string(REPLACE ";" ", " ZYBASE_REQUIRE_WITH "${ZYBASE_REQUIRE_COMPONENTS}")
        string(REGEX REPLACE "(.+)" " with \\1" ZYBASE_REQUIRE_WITH "${ZYBASE_REQUIRE_WITH}")
        message(FATAL_ERROR
            "Missing: ${name} ${version} or later${ZYBASE_REQUIRE_WITH}. Install the Debian package ${ZYBASE_REQUIRE_PACKAGE}.")
    endif()
endmacro()

# Defines the target Log4Qt::log4qt: an installed log4qt or the one of this tree, depending on ZYBASE_LOG4QT.
macro(zybase_require_log4qt)
    if(NOT ZYBASE_LOG4QT MATCHES "^(auto|system|own)$")
        message(FATAL_ERROR "ZYBASE_LOG4QT is \"${ZYBASE_LOG4QT}\": it takes auto, system or own.")
    endif()
    if(NOT ZYBASE_LOG4QT STREQUAL "own" AND TARGET Log4Qt::log4qt)
        find_package(Log4Qt 1.5 QUIET)
    elseif(NOT ZYBASE_LOG4QT STREQUAL "own")
        find_package(Log4Qt 1.5 QUIET)
        if(Log4Qt_FOUND)
            # A project that adds this tree as a subdirectory links the target, too.
            set_target_properties(Log4Qt::log4qt PROPERTIES IMPORTED_GLOBAL TRUE)
        endif()
    endif()
    if(Log4Qt_FOUND)
        message(STATUS "log4qt: installed, version ${Log4Qt_VERSION}")
    elseif(ZYBASE_LOG4QT STREQUAL "system")
        message(FATAL_ERROR
            "Missing: log4qt 1.5 or later. No Debian package contains it: add its prefix to CMAKE_PREFIX_PATH or set ZYBASE_LOG4QT=own.")
    else()
        message(STATUS "log4qt: our own")
        add_subdirectory(log4qt)
    endif()
endmacro()
