# SPDX-License-Identifier: LGPL-2.1-or-later
#
# The options that all targets of this tree are compiled and linked with.

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

# All shared objects of the build are in one directory, as in an application's package. Each finds the other
# beside itself.
set(ZYBASE_LIBRARY_DIR "${CMAKE_CURRENT_BINARY_DIR}/lib")

# Sets C++17, the warnings and Qt's strict mode. All are PRIVATE: applications do not inherit them.
function(zybase_compile target)
    target_compile_features(${target} PRIVATE cxx_std_17)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    # Before glibc 2.34 the thread functions are in a separate library.
    target_link_libraries(${target} PRIVATE Threads::Threads)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion
        # Qt's macros are used without their last arguments.
        $<$<CXX_COMPILER_ID:Clang>:-Wno-gnu-zero-variadic-macro-arguments>
        $<$<BOOL:${ZYBASE_WARNINGS_AS_ERRORS}>:-Werror>)
    target_compile_definitions(${target} PRIVATE
        QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING
        QT_NO_KEYWORDS QT_NO_FOREACH QT_DEPRECATED_WARNINGS)
    if(ZYBASE_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${ZYBASE_SANITIZE} -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${ZYBASE_SANITIZE})
    endif()
    if(ZYBASE_COVERAGE)
        target_compile_options(${target} PRIVATE --coverage)
        target_link_options(${target} PRIVATE --coverage)
    endif()
endfunction()

# A shared object that applications ship with their program. The SONAME is the plain file name, internal calls
# are bound at link time, and other libraries are searched for in its own directory.
function(zybase_shared_object target)
    zybase_compile(${target})
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions -Wl,-z,defs)
    if(ZYBASE_SANITIZE)
        # The program defines the symbols of the sanitizers.
        target_link_options(${target} PRIVATE -Wl,-z,undefs)
    endif()
    set_target_properties(${target} PROPERTIES
        LIBRARY_OUTPUT_DIRECTORY "${ZYBASE_LIBRARY_DIR}"
        BUILD_RPATH_USE_ORIGIN ON
        INSTALL_RPATH "$ORIGIN")
endfunction()

# zybase_export(<target> <list>): exports the C++ names of the list and no others. The compiler and its
# options make no difference.
function(zybase_export target list)
    file(READ "${list}" names)
    string(REGEX REPLACE "#[^\n]*\n" "" names "${names}")
    string(REGEX REPLACE "([^\n]+)\n" "        \"\\1\";\n" names "${names}")
    set(script "${CMAKE_CURRENT_BINARY_DIR}/${target}.map")
    file(GENERATE OUTPUT "${script}"
        CONTENT "{\n  global:\n    extern \"C++\" {\n${names}    };\n  local:\n    *;\n};\n")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list}")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
endfunction()
