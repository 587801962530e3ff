# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Rules for cmake --install: the libraries, and the files by which build systems find them. These are a CMake
# package, a pkg-config file and a qmake module. The installed tree is relocatable: no installed file contains
# the prefix.

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(ZYBASE_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/ZyBase")

function(zybase_install_shared_object target)
    install(TARGETS ${target} EXPORT ZyBaseTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime
        INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
endfunction()

# zybase_install_description(<template> <directory>): installs a file that names the prefix relative to its
# own directory.
function(zybase_install_description template directory)
    get_filename_component(name "${template}" NAME_WLE)
    file(RELATIVE_PATH ZYBASE_UP_TO_PREFIX "/prefix/${directory}" "/prefix")
    string(REGEX REPLACE "/$" "" ZYBASE_UP_TO_PREFIX "${ZYBASE_UP_TO_PREFIX}")
    configure_file("${template}" "${PROJECT_BINARY_DIR}/${name}" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${name}" DESTINATION "${directory}" COMPONENT devel)
endfunction()

function(zybase_install_packages)
    if(TARGET ZyLog4Qt)
        set(ZYBASE_OWN_LOG4QT ON)
        set(ZYBASE_LOG4QT_PC_CFLAGS " -I\${includedir}/ZyLog4Qt")
        set(ZYBASE_LOG4QT_PRI_INCLUDES "QT.ZyBase.includes += $$QT.ZyBase.includes/ZyLog4Qt")
    else()
        set(ZYBASE_OWN_LOG4QT OFF)
        install(FILES cmake/FindLog4Qt.cmake DESTINATION "${ZYBASE_PACKAGE_DIR}" COMPONENT devel)
    endif()
    configure_package_config_file(cmake/ZyBaseConfig.cmake.in "${PROJECT_BINARY_DIR}/ZyBaseConfig.cmake"
        INSTALL_DESTINATION "${ZYBASE_PACKAGE_DIR}"
        NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZyBaseConfigVersion.cmake"
        COMPATIBILITY SameMajorVersion)
    install(FILES "${PROJECT_BINARY_DIR}/ZyBaseConfig.cmake" "${PROJECT_BINARY_DIR}/ZyBaseConfigVersion.cmake"
        DESTINATION "${ZYBASE_PACKAGE_DIR}" COMPONENT devel)
    install(EXPORT ZyBaseTargets NAMESPACE ZyBase:: DESTINATION "${ZYBASE_PACKAGE_DIR}" COMPONENT devel)

    zybase_install_description(cmake/ZyBase.pc.in "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    zybase_install_description(cmake/qt_ZyBase.pri.in "${ZYBASE_MKSPECS_DIR}")
endfunction()
