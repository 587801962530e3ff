# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Installs to a staging directory as packagers do, moves the result, and checks the installed files.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

file(REMOVE_RECURSE ${PREFIX})
set(ENV{DESTDIR} ${WORK_DIR}/stage)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix /opt/zybase)
unset(ENV{DESTDIR})
file(RENAME ${WORK_DIR}/stage/opt/zybase ${PREFIX})

# The public headers are installed, and no private header.
file(GLOB_RECURSE headers RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/ZyBase/*.h)
list(REMOVE_ITEM headers
    ZyBase/analytics/SigningSecret.h ZyBase/base/DateFormatting.h ZyBase/http/Exchange.h
    ZyBase/netinfo/Services.h ZyBase/platform/ChildProcess.h)
list(APPEND headers ZyBase/base/ZyBaseVersion.h)
file(GLOB_RECURSE installed RELATIVE ${PREFIX}/include ${PREFIX}/include/ZyBase/*)
list(SORT headers)
list(SORT installed)
if(NOT headers STREQUAL installed)
    message(FATAL_ERROR "Headers should be\n${headers}\nand are\n${installed}")
endif()

# Each header compiles alone with Qt's strictest settings.
pkg_config(--cflags flags)
separate_arguments(flags UNIX_COMMAND "${flags}")
foreach(header ${headers})
    file(WRITE ${WORK_DIR}/alone.cpp "#include <${header}>\n")
    run(${CXX} -std=c++17 -fPIC -fsyntax-only -Wall -Wextra -Wpedantic -Werror
        -DQT_NO_KEYWORDS -DQT_NO_CAST_FROM_ASCII -DQT_NO_CAST_TO_ASCII ${flags} ${WORK_DIR}/alone.cpp)
endforeach()

# No text file contains a path of the build.
file(GLOB_RECURSE texts ${PREFIX}/include/* ${PREFIX}/*.cmake ${PREFIX}/*.pc ${PREFIX}/*.pri)
foreach(text ${texts})
    file(READ ${text} content)
    foreach(path ${SOURCE_DIR} ${BUILD_DIR} /opt/zybase)
        string(FIND "${content}" "${path}" position)
        if(NOT position EQUAL -1)
            message(FATAL_ERROR "${text} contains the path ${path}")
        endif()
    endforeach()
endforeach()

# The library searches its own directory for its sibling, and no other.
run(readelf -dW ${PREFIX}/${LIBDIR}/libZyBase.so)
if(NOT OUTPUT MATCHES "R(UN)?PATH\\)[^\n]*\\[\\$ORIGIN\\]\n")
    message(FATAL_ERROR "The installed library searches other directories for its sibling: ${OUTPUT}")
endif()
