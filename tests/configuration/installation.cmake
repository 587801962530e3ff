# SPDX-License-Identifier: LGPL-2.1-or-later
#
# Installs a fake library with scripts/install and removes it with scripts/uninstall.

include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

find_program(ENV_COMMAND env)

# A cmake that installs the files of ${WORK_DIR}/library, and other tools that do nothing.
set(prefix ${WORK_DIR}/prefix)
set(tree ${WORK_DIR}/tree)
set(library ${WORK_DIR}/library)
set(manifest share/ZyBase/manifest.txt)
file(WRITE ${WORK_DIR}/bin/cmake "#!/bin/sh
[ \"$1\" != --version ] || echo 'cmake version 3.25.1'
[ \"$1\" = --install ] || exit 0
mkdir -p \"$DESTDIR${prefix}\" && cp -R ${library}/. \"$DESTDIR${prefix}\"
")
file(WRITE ${WORK_DIR}/bin/dpkg-query "#!/bin/sh\necho installed\n")
file(WRITE ${WORK_DIR}/bin/ldconfig "#!/bin/sh\necho called >>${WORK_DIR}/ldconfig.log\n")
file(GLOB tools ${WORK_DIR}/bin/*)
run(chmod +x ${tools})
file(COPY ${SOURCE_DIR}/scripts ${SOURCE_DIR}/CMakePresets.json DESTINATION ${tree})

# call(<script>): runs scripts/<script> for the prefix; sets RESULT and OUTPUT.
function(call script)
    execute_process(COMMAND ${ENV_COMMAND} PATH=${WORK_DIR}/bin:$ENV{PATH} ${tree}/scripts/${script} ${prefix}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    set(RESULT "${result}" PARENT_SCOPE)
    set(OUTPUT "${output}" PARENT_SCOPE)
endfunction()

# expect_files([NAME...]): compares what is below the prefix, with directories.
function(expect_files)
    file(GLOB_RECURSE found LIST_DIRECTORIES ON RELATIVE ${prefix} ${prefix}/*)
    list(SORT found)
    if(NOT "${found}" STREQUAL "${ARGN}")
        message(FATAL_ERROR "Below the prefix should be \"${ARGN}\"; there is \"${found}\"")
    endif()
endfunction()

file(WRITE ${library}/lib/libZyBase.so 1)
file(WRITE ${library}/include/ZyBase/Old.h 1)

# In a new prefix, nothing is left.
call(install)
expect_success()
expect_files(include include/ZyBase include/ZyBase/Old.h lib lib/libZyBase.so share share/ZyBase ${manifest})
call(uninstall)
expect_success()
if(EXISTS ${prefix})
    message(FATAL_ERROR "The prefix should be removed")
endif()

# Files of others, and directories that existed before, are kept.
file(WRITE ${prefix}/share/other 1)
file(MAKE_DIRECTORY ${prefix}/lib)
call(install)
file(WRITE ${prefix}/include/other.h 1)
call(uninstall)
expect_success()
expect_files(include include/other.h lib share share/other)

# A later version replaces the earlier one. Running applications keep the file that they have loaded. The new
# manifest lists the directories of both.
file(REMOVE_RECURSE ${prefix})
call(install)
file(CREATE_LINK ${prefix}/lib/libZyBase.so ${WORK_DIR}/loaded)
file(RENAME ${library}/include/ZyBase/Old.h ${library}/include/ZyBase/New.h)
file(WRITE ${library}/lib/libZyBase.so 2)
call(install)
expect_success()
expect_files(include include/ZyBase include/ZyBase/New.h lib lib/libZyBase.so share share/ZyBase ${manifest})
file(READ ${WORK_DIR}/loaded loaded)
if(NOT loaded STREQUAL "1")
    message(FATAL_ERROR "The library that applications have loaded was overwritten")
endif()

# The linker's cache is refreshed if the installation did that.
if(EXISTS ${WORK_DIR}/ldconfig.log)
    message(FATAL_ERROR "The prefix is no directory of the linker, but ldconfig was called")
endif()
file(APPEND ${prefix}/${manifest} "# ldconfig\n")
call(uninstall)
expect_success()
if(EXISTS ${prefix} OR NOT EXISTS ${WORK_DIR}/ldconfig.log)
    message(FATAL_ERROR "The prefix should be removed, and ldconfig called")
endif()

call(uninstall)
expect_failure_with("uninstall: there is no ${prefix}/${manifest}")

# A manifest cannot remove files outside the prefix.
file(WRITE ${prefix}/${manifest} "./share/../../library/lib/libZyBase.so\n")
call(uninstall)
expect_failure_with("names a file outside ${prefix}")
if(NOT EXISTS ${library}/lib/libZyBase.so)
    message(FATAL_ERROR "A file outside the prefix was removed")
endif()
