# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Copies the note keeper and the recipes, as its README describes, and builds and installs it by CMake and by
# qmake.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

find_program(QMAKE NAMES qmake-qt5 qmake PATHS /usr/lib/qt5/bin REQUIRED)
set(ENV{QMAKEPATH} ${PREFIX})
set(ENV{QT_SELECT} qt5)
set(ENV{QT_QPA_PLATFORM} offscreen)

# expect_installed(<prefix>): verifies which files are installed, and that the program starts.
function(expect_installed prefix)
    file(GLOB_RECURSE files RELATIVE ${prefix} ${prefix}/*)
    list(SORT files)
    set(expected bin/notekeeper share/applications/notekeeper.desktop
        share/icons/hicolor/scalable/apps/notekeeper.svg)
    if(NOT files STREQUAL expected)
        message(FATAL_ERROR "The installed files should be ${expected}, and are ${files}")
    endif()
    run(${prefix}/bin/notekeeper --version)
    if(NOT OUTPUT MATCHES "notekeeper 1.0.0\n$")
        message(FATAL_ERROR "The installed program printed: ${OUTPUT}")
    endif()
endfunction()

file(COPY ${SOURCE_DIR}/examples/notekeeper ${SOURCE_DIR}/examples/recipes DESTINATION ${WORK_DIR})

# The program only has to start, so both builds compile all sources as one, which is much faster.
configure(${WORK_DIR}/notekeeper ${WORK_DIR}/cmake -DCMAKE_PREFIX_PATH=${PREFIX}
    -DCMAKE_CXX_FLAGS_DEBUG=-O0 -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0)
expect_success()
run(${CMAKE_COMMAND} --build ${WORK_DIR}/cmake)
run(${CMAKE_COMMAND} --install ${WORK_DIR}/cmake --prefix ${WORK_DIR}/by-cmake)
expect_installed(${WORK_DIR}/by-cmake)

file(RENAME ${WORK_DIR}/recipes ${WORK_DIR}/elsewhere)
file(MAKE_DIRECTORY ${WORK_DIR}/qmake)
function(run_qmake)
    run(${CMAKE_COMMAND} -E chdir ${WORK_DIR}/qmake ${QMAKE} ${WORK_DIR}/notekeeper
        RECIPES=${WORK_DIR}/elsewhere PREFIX=${WORK_DIR}/by-qmake QMAKE_CXXFLAGS_RELEASE=-O0 ${ARGN})
endfunction()
run_qmake()
file(READ ${WORK_DIR}/qmake/Makefile makefile)
string(REGEX MATCH "\nSOURCES .*\nOBJECTS " sources "${makefile}")
string(REGEX MATCHALL "[^ \t\n]+\\.cpp" sources "${sources}")
list(FILTER sources EXCLUDE REGEX "^(moc|qrc)_")
list(TRANSFORM sources REPLACE "(.+)" "#include \"\\1\"\n")
file(WRITE ${WORK_DIR}/qmake/sources.cpp ${sources})
run_qmake(-after SOURCES=${WORK_DIR}/qmake/sources.cpp)
run(make -j2 -C ${WORK_DIR}/qmake install)
expect_installed(${WORK_DIR}/by-qmake)
