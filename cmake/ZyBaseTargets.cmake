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
endfunction()

# Protects the stack and, on x86, indirect jumps and returns. The loader makes the addresses of functions
# read-only before the program starts. Optimised builds check the sizes of buffers.
include(CheckCXXCompilerFlag)
check_cxx_compiler_flag(-fstack-protector-strong ZYBASE_HAS_STACK_PROTECTOR)
check_cxx_compiler_flag(-fcf-protection ZYBASE_HAS_CF_PROTECTION)

# False without optimisation, and if the compiler or CXXFLAGS define the macro. Both depend on flags that can
# change, so each configuration checks it again.
include(CheckCXXSourceCompiles)
string(TOUPPER "CMAKE_CXX_FLAGS_${CMAKE_BUILD_TYPE}" flags_of_build_type)
set(CMAKE_REQUIRED_FLAGS "${${flags_of_build_type}}")
set(CMAKE_REQUIRED_QUIET ON)
unset(ZYBASE_SETS_FORTIFY_SOURCE CACHE)
check_cxx_source_compiles("
#if defined _FORTIFY_SOURCE || !defined __OPTIMIZE__
#error
#endif
int main() { return 0; }" ZYBASE_SETS_FORTIFY_SOURCE)
unset(CMAKE_REQUIRED_FLAGS)
unset(CMAKE_REQUIRED_QUIET)

function(zybase_harden target)
    target_compile_options(${target} PRIVATE
        $<$<BOOL:${ZYBASE_HAS_STACK_PROTECTOR}>:-fstack-protector-strong>
        $<$<BOOL:${ZYBASE_HAS_CF_PROTECTION}>:-fcf-protection>)
    if(ZYBASE_SETS_FORTIFY_SOURCE AND NOT ZYBASE_SANITIZE)
        target_compile_definitions(${target} PRIVATE _FORTIFY_SOURCE=2)
    endif()
    target_link_options(${target} PRIVATE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endfunction()

# A shared object that applications ship with their program. The SONAME is the plain file name, internal calls
# are bound at link time, and other libraries are searched for in its own directory.
function(zybase_shared_object target)
    zybase_compile(${target})
    zybase_harden(${target})
    target_compile_options(${target} PRIVATE -fno-semantic-interposition)
    target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions -Wl,-z,defs -Wl,--as-needed)
    if(ZYBASE_SANITIZE)
        # The program defines the symbols of the sanitizers.
        target_link_options(${target} PRIVATE -Wl,-z,undefs)
    endif()
    if(ZYBASE_COVERAGE)
        # Several threads count the same lines. The library handles no exceptions, and the code that the
        # compiler generates for them has branches that no test can reach.
        target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic -fno-exceptions)
        target_link_options(${target} PRIVATE --coverage)
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
