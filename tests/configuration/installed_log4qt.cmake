# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Builds the library with an installed log4qt. That log4qt is built from our own sources, with the classes
# directly in Log4Qt and under the usual library name. It is installed once with a CMake package and once
# as header and library only. As in log4qt 1.5, the package links Qt5::Core and Qt5::Concurrent and looks for
# neither. Applications then log with it.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

set(own ${SOURCE_DIR}/log4qt)
set(plain ${WORK_DIR}/source)
file(GLOB_RECURSE sources RELATIVE ${own} ${own}/*.h ${own}/*.cpp)
foreach(source ${sources})
    file(READ ${own}/${source} text)
    string(REPLACE "inline namespace zy {" "" text "${text}")
    string(REPLACE "} // namespace zy" "" text "${text}")
    file(WRITE ${plain}/${source} "${text}")
endforeach()
file(WRITE ${plain}/CMakeLists.txt [[
cmake_minimum_required(VERSION 3.16)
project(Log4Qt VERSION 1.5.1 LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_AUTOMOC ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
find_package(Qt5 REQUIRED COMPONENTS Core Concurrent)
file(GLOB sources src/*.cpp src/*.h include/log4qt/*.h)
add_library(log4qt SHARED ${sources})
target_compile_definitions(log4qt PRIVATE LOG4QT_BUILDING)
target_include_directories(log4qt PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include> PRIVATE src)
target_link_libraries(log4qt PUBLIC Qt5::Core Qt5::Concurrent)
include(CMakePackageConfigHelpers)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/Log4QtConfigVersion.cmake COMPATIBILITY AnyNewerVersion)
file(WRITE ${CMAKE_BINARY_DIR}/Log4QtConfig.cmake "include(\"\${CMAKE_CURRENT_LIST_DIR}/Log4QtTargets.cmake\")\n")
install(DIRECTORY include/log4qt DESTINATION include)
install(TARGETS log4qt EXPORT Log4QtTargets DESTINATION lib)
if(WITH_PACKAGE)
    install(EXPORT Log4QtTargets NAMESPACE Log4Qt:: DESTINATION lib/cmake/Log4Qt)
    install(FILES ${CMAKE_BINARY_DIR}/Log4QtConfig.cmake ${CMAKE_BINARY_DIR}/Log4QtConfigVersion.cmake
        DESTINATION lib/cmake/Log4Qt)
endif()
]])

file(WRITE ${WORK_DIR}/host/CMakeLists.txt
    "cmake_minimum_required(VERSION 3.16)\n"
    "project(host LANGUAGES CXX)\n"
    "set(CMAKE_CXX_STANDARD 17)\n"
    "add_subdirectory(\"${SOURCE_DIR}\" ZyBase)\n"
    "add_executable(host main.cpp)\n"
    "target_link_libraries(host PRIVATE ZyBase::ZyBase Log4Qt::log4qt)\n")
file(WRITE ${WORK_DIR}/host/main.cpp [[
#include <ZyBase/base/LoggerObject.h>
#include <log4qt/logger.h>
int main(int, char **argv)
{
    ZyBase::LoggerObject::InitLogger("host.log", argv[1]);
    ZyBase::LoggerObject::warn("with the library");
    Log4Qt::Logger::rootLogger()->warn(QStringLiteral("with log4qt"));
    ZyBase::LoggerObject::ReleaseLogger();
}
]])

# expect_log4qt(<description> [OPTION...]): configures the library alone and compares the log4qt that it uses.
function(expect_log4qt description)
    file(REMOVE_RECURSE ${WORK_DIR}/choice)
    configure(${SOURCE_DIR} ${WORK_DIR}/choice -DBUILD_TESTING=OFF -DZYBASE_BUILD_EXAMPLES=OFF ${ARGN})
    expect_success()
    string(FIND "${OUTPUT}" "log4qt: ${description} " position)
    if(position EQUAL -1)
        message(FATAL_ERROR "The log4qt should be \"${description}\" with ${ARGN}: ${OUTPUT}")
    endif()
endfunction()

# expect_consumer_logs(<directory> <prefixes> [OPTION...]): builds an application of the installed library.
function(expect_consumer_logs consumer prefixes)
    configure(${SOURCE_DIR}/tests/consumers/cmake ${consumer} "-DCMAKE_PREFIX_PATH=${prefixes}" ${ARGN})
    expect_success()
    run(${CMAKE_COMMAND} --build ${consumer})
    set(ENV{LD_LIBRARY_PATH} ${prefix}/lib)
    run(${consumer}/consumer ${consumer})
    unset(ENV{LD_LIBRARY_PATH})
    file(READ ${consumer}/log/consumer.log log)
    if(NOT log MATCHES " INFO   - by log4qt itself\n[^\n]* INFO   - built against")
        message(FATAL_ERROR "The consumer's log contains: ${log}")
    endif()
endfunction()

foreach(package ON OFF)
    set(prefix ${WORK_DIR}/prefix-${package})
    configure(${plain} ${WORK_DIR}/log4qt -DWITH_PACKAGE=${package} -DCMAKE_INSTALL_PREFIX=${prefix})
    expect_success()
    run(${CMAKE_COMMAND} --build ${WORK_DIR}/log4qt --target install)

    set(build ${WORK_DIR}/host-${package})
    configure(${WORK_DIR}/host ${build} -DCMAKE_PREFIX_PATH=${prefix} -DZYBASE_LOG4QT=system -DZYBASE_INSTALL=ON)
    expect_success()
    run(${CMAKE_COMMAND} --build ${build})
    run(readelf -dW ${build}/ZyBase/lib/libZyBase.so)
    if(NOT OUTPUT MATCHES "NEEDED[^\n]*liblog4qt\\.so" OR OUTPUT MATCHES "libZyLog4Qt")
        message(FATAL_ERROR "The library should be linked with the installed log4qt: ${OUTPUT}")
    endif()
    file(MAKE_DIRECTORY ${WORK_DIR}/base-${package})
    run(${build}/host ${WORK_DIR}/base-${package})
    file(READ ${WORK_DIR}/base-${package}/log/host.log log)
    if(NOT log MATCHES " WARN   - with the library\n[^\n]* WARN   - with log4qt\n$")
        message(FATAL_ERROR "The log contains: ${log}")
    endif()

    # An application of the installed library finds the installed log4qt. Ours is not installed.
    set(installed ${WORK_DIR}/installed-${package})
    run(${CMAKE_COMMAND} --install ${build} --prefix ${installed})
    if(EXISTS ${installed}/include/ZyLog4Qt OR EXISTS ${installed}/lib/libZyLog4Qt.so)
        message(FATAL_ERROR "Our own log4qt should not be installed beside another")
    endif()
    expect_consumer_logs(${WORK_DIR}/consumer-${package} "${installed}\\;${prefix}")
    expect_consumer_logs(${WORK_DIR}/consumer-${package}-without-concurrent "${installed}\\;${prefix}"
        -DCMAKE_DISABLE_FIND_PACKAGE_Qt5Concurrent=ON)
endforeach()

# An installed log4qt is used by default.
set(prefix ${WORK_DIR}/prefix-ON)
expect_log4qt("installed, version 1.5.1" -DCMAKE_PREFIX_PATH=${prefix})
expect_log4qt("installed, version 1.5.1" -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_DISABLE_FIND_PACKAGE_Qt5Concurrent=ON)
expect_log4qt("our own" -DCMAKE_PREFIX_PATH=${prefix} -DZYBASE_LOG4QT=own)

# The header and library are used if the package reports that it cannot be used ...
set(package ${prefix}/lib/cmake/Log4Qt)
file(WRITE ${package}/Log4QtConfig.cmake "set(Log4Qt_FOUND FALSE)\n")
expect_log4qt("installed, version 1.5" -DCMAKE_PREFIX_PATH=${prefix})

# ... but not if it is the package of another version.
foreach(version 1.4.2 2.0.0)
    if(version VERSION_LESS 2 OR NOT CMAKE_VERSION VERSION_LESS 3.19)
        include(CMakePackageConfigHelpers)
        write_basic_package_version_file(${package}/Log4QtConfigVersion.cmake
            VERSION ${version} COMPATIBILITY AnyNewerVersion ARCH_INDEPENDENT)
        expect_log4qt("our own" -DCMAKE_PREFIX_PATH=${prefix})
    endif()
endforeach()
