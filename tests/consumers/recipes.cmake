# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Copies the files that each page of the guide names into an empty application, and builds it with the lines of
# the page, by CMake and by qmake.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

find_program(QMAKE NAMES qmake-qt5 qmake PATHS /usr/lib/qt5/bin REQUIRED)
set(ENV{QMAKEPATH} ${PREFIX})
set(ENV{QT_SELECT} qt5)

# lines_for(<language> <page> <variable>): sets the variable to the page's only block of this language.
function(lines_for language page variable)
    file(READ ${page} text)
    string(REGEX MATCH "\n```${language}\n([^`]*)```" block "${text}")
    set(${variable} "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()

# make_application(<recipe> <directory>): copies the files of a recipe and writes a main.cpp with its headers.
function(make_application recipe directory)
    file(MAKE_DIRECTORY ${directory})
    set(includes "")
    foreach(name ${ARGN})
        configure_file(${SOURCE_DIR}/examples/recipes/${recipe}/${name} ${directory}/${name} COPYONLY)
        if(name MATCHES "\\.h$")
            string(APPEND includes "#include \"${name}\"\n")
        endif()
    endforeach()
    file(WRITE ${directory}/main.cpp "${includes}int main()\n{\n}\n")
endfunction()

execute_process(COMMAND pkg-config --exists quazip1-qt5 RESULT_VARIABLE no_quazip)
file(GLOB pages ${SOURCE_DIR}/docs/guide/*.md)
list(FILTER pages EXCLUDE REGEX "/(README|putting-it-together)\\.md$")
foreach(page ${pages})
    get_filename_component(recipe ${page} NAME_WE)
    lines_for(cmake ${page} cmake_lines)
    lines_for(qmake ${page} qmake_lines)
    if(no_quazip AND qmake_lines MATCHES "quazip1-qt5")
        message(STATUS "Skipped: ${recipe}, because QuaZip is older than 1")
        continue()
    endif()
    string(REPLACE "-lZyLog4Qt" "-l${LOG4QT}" qmake_lines "${qmake_lines}")
    string(REGEX MATCHALL "[A-Za-z0-9]+\\.(h|cpp)" names "${cmake_lines}")
    set(application ${WORK_DIR}/${recipe})
    make_application(${recipe} ${application} ${names})

    file(WRITE ${application}/CMakeLists.txt
        "cmake_minimum_required(VERSION 3.16)\nproject(application CXX)\nadd_executable(application main.cpp)\n"
        "${cmake_lines}")
    configure(${application} ${application}/build -DCMAKE_PREFIX_PATH=${PREFIX})
    expect_success()
    run(${CMAKE_COMMAND} --build ${application}/build)

    file(WRITE ${application}/application.pro "SOURCES += main.cpp\n${qmake_lines}")
    run(${CMAKE_COMMAND} -E chdir ${application} ${QMAKE} application.pro)
    run(make -C ${application})
endforeach()
