# SPDX-License-Identifier: LGPL-2.1-or-later

include(${CMAKE_CURRENT_LIST_DIR}/../configuration/support.cmake)

# pkg_config(<option> <variable>): sets the variable to the output of pkg-config for the moved library.
function(pkg_config option variable)
    set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBDIR}/pkgconfig)
    run(pkg-config ${option} ZyBase)
    string(STRIP "${OUTPUT}" output)
    set(${variable} "${output}" PARENT_SCOPE)
endfunction()

# expect_consumer_works(<program>): verifies the output of the program and its log.
function(expect_consumer_works program)
    run(${program} ${WORK_DIR})
    if(NOT OUTPUT STREQUAL "1005b14bd29466723ace30d26f602f5b 64\n")
        message(FATAL_ERROR "The consumer printed: ${OUTPUT}")
    endif()
    file(READ ${WORK_DIR}/log/consumer.log log)
    if(NOT log MATCHES "INFO   - by log4qt itself\n[^\n]* INFO   - built against ${VERSION}\n$")
        message(FATAL_ERROR "The consumer's log contains: ${log}")
    endif()
endfunction()
