# What a build needs. One line of ours says what is missing, before CMake's own messages.

# Ends the configuration; @p line says what is needed.
function(zyn_refuse line)
    message(NOTICE "ZynPhone: ${line}")
    message(FATAL_ERROR "Not configured.")
endfunction()

# Refuses to build in the source folder. CMake has already written there, and every later run would take the source
# folder for its build folder because of that cache: hence the rm.
function(zyn_require_build_folder)
    if(CMAKE_CURRENT_SOURCE_DIR STREQUAL CMAKE_CURRENT_BINARY_DIR)
        zyn_refuse("build outside the source folder: rm -r CMakeCache.txt CMakeFiles, then cmake --preset dev")
    endif()
endfunction()

# Looks for the programs that project() will look for, except those that the caller has named.
function(zyn_require_programs)
    if(CMAKE_GENERATOR MATCHES Ninja)
        find_program(CMAKE_MAKE_PROGRAM NAMES ninja-build ninja samu)
        if(NOT CMAKE_MAKE_PROGRAM)
            zyn_refuse("needs ninja (Debian: ninja-build)")
        endif()
    endif()
    if(NOT (CMAKE_CXX_COMPILER OR CMAKE_TOOLCHAIN_FILE OR DEFINED ENV{CXX}))
        find_program(compiler NAMES c++ g++ clang++ NO_CACHE)
        if(NOT compiler)
            zyn_refuse("needs a C++ compiler (Debian: g++)")
        endif()
    endif()
endfunction()

# Checks the language level, and the newest standard header that the sources include.
function(zyn_require_cxx20)
    if(cxx_std_20 IN_LIST CMAKE_CXX_COMPILE_FEATURES AND NOT ZYN_HAS_CXX20)
        try_compile(ZYN_HAS_CXX20
            SOURCE_FROM_CONTENT span.cpp "#include <span>\nint main() { return int(std::span<int>().size()); }\n"
            CXX_STANDARD 20 CXX_STANDARD_REQUIRED ON)
    endif()
    if(NOT ZYN_HAS_CXX20)
        zyn_refuse("needs a compiler that knows C++20 (Debian 12: g++), ${CMAKE_CXX_COMPILER} does not")
    endif()
endfunction()

# Finds the modules of Qt. A macro: AUTOMOC reads what it sets.
macro(zyn_require_qt)
    find_package(Qt6 6.4 QUIET COMPONENTS ${ARGN})
    if(NOT Qt6_FOUND)
        list(JOIN Qt6_CONSIDERED_VERSIONS ", " zyn_found)
        if(NOT zyn_found)
            set(zyn_found "none")
        endif()
        zyn_refuse("needs Qt 6.4 or newer with ${ARGN} (Debian: qt6-base-dev), found ${zyn_found}")
    endif()
endmacro()

# Finds what the QML module and the handset on the screen need beyond the library, and sets ZYN_HAS_QT_QUICK. Without it
# all else is built. A macro, as above.
macro(zyn_find_qt_quick)
    find_package(Qt6 6.4 QUIET OPTIONAL_COMPONENTS Quick)
    set(ZYN_HAS_QT_QUICK ${Qt6Quick_FOUND})
    if(NOT ZYN_HAS_QT_QUICK)
        message(STATUS "ZynPhone: no QML module, as there is no Qt Quick (Debian: qt6-declarative-dev)")
    endif()
endmacro()
