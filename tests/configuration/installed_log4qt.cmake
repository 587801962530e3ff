# SPDX-License-Identifier: LGPL-2.1-or-later
#
# The library against a log4qt that is installed elsewhere. It is made of our own sources with the
# classes plainly in Log4Qt and under the usual library name, as others install it: once with a CMake
# package, once as header and library only. A host then logs through it.

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
find_package(Qt5 REQUIRED COMPONENTS Core)
file(GLOB sources src/*.cpp src/*.h include/log4qt/*.h)
add_library(log4qt SHARED ${sources})
target_compile_definitions(log4qt PRIVATE LOG4QT_BUILDING)
target_include_directories(log4qt PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include> PRIVATE src)
target_link_libraries(log4qt PUBLIC Qt5::Core)
include(CMakePackageConfigHelpers)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/Log4QtConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(DIRECTORY include/log4qt DESTINATION include)
install(TARGETS log4qt EXPORT Log4QtConfig DESTINATION lib)
if(WITH_PACKAGE)
    install(EXPORT Log4QtConfig NAMESPACE Log4Qt:: DESTINATION lib/cmake/Log4Qt)
    install(FILES ${CMAKE_BINARY_DIR}/Log4QtConfigVersion.cmake DESTINATION lib/cmake/Log4Qt)
endif()
]])

file(WRITE ${WORK_DIR}/host/CMakeLists.txt
    "cmake_minimum_required(VERSION 3.16)\n"
    "project(host LANGUAGES CXX)\n"
    "set(CMAKE_CXX_STANDARD 17)\n"
    "add_subdirectory(\"${SOURCE_DIR}\" ZyBase)\n"
    "add_executable(host main.cpp)\n"
    "target_link_libraries(host PRIVATE ZyBase::ZyBase)\n")
file(WRITE ${WORK_DIR}/host/main.cpp [[
#include <ZyBase/base/LoggerObject.h>
int main(int, char **argv)
{
    ZyBase::LoggerObject::InitLogger("host.log", argv[1]);
    ZyBase::LoggerObject::warn("through the installed one");
    ZyBase::LoggerObject::ReleaseLogger();
}
]])

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
    if(NOT log MATCHES " WARN   - through the installed one\n$")
        message(FATAL_ERROR "The log holds: ${log}")
    endif()

    # A host of the installed library finds that log4qt too, and brings none of ours.
    set(installed ${WORK_DIR}/installed-${package})
    run(${CMAKE_COMMAND} --install ${build} --prefix ${installed})
    if(EXISTS ${installed}/include/ZyLog4Qt OR EXISTS ${installed}/lib/libZyLog4Qt.so)
        message(FATAL_ERROR "Our own log4qt should not be installed beside another")
    endif()
    set(consumer ${WORK_DIR}/consumer-${package})
    configure(${SOURCE_DIR}/tests/consumers/cmake ${consumer} "-DCMAKE_PREFIX_PATH=${installed}\\;${prefix}")
    expect_success()
    run(${CMAKE_COMMAND} --build ${consumer})
    set(ENV{LD_LIBRARY_PATH} ${prefix}/lib)
    run(${consumer}/consumer ${consumer})
    unset(ENV{LD_LIBRARY_PATH})
    file(READ ${consumer}/log/consumer.log log)
    if(NOT log MATCHES " INFO   - by log4qt itself\n[^\n]* INFO   - built against")
        message(FATAL_ERROR "The consumer's log holds: ${log}")
    endif()
endforeach()

# What is installed is taken without being asked for, unless our own is.
set(prefix ${WORK_DIR}/prefix-ON)
configure(${SOURCE_DIR} ${WORK_DIR}/auto -DCMAKE_PREFIX_PATH=${prefix})
expect_success()
if(NOT OUTPUT MATCHES "log4qt: installed, version 1\\.5\\.1")
    message(FATAL_ERROR "The installed log4qt should be taken: ${OUTPUT}")
endif()
configure(${SOURCE_DIR} ${WORK_DIR}/own -DCMAKE_PREFIX_PATH=${prefix} -DZYBASE_LOG4QT=own)
expect_success()
if(NOT OUTPUT MATCHES "log4qt: our own")
    message(FATAL_ERROR "Our own log4qt should be taken: ${OUTPUT}")
endif()
