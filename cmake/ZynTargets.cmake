# What the targets of this project have in common. It is set on our own targets only: a parent project keeps its flags.

# Programs and libraries find our libraries relative to themselves, whatever the prefix.
file(RELATIVE_PATH libraries_from_programs ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set(ZYN_LIBRARY_RPATH "$ORIGIN")
set(ZYN_PROGRAM_RPATH "$ORIGIN/${libraries_from_programs}")

# Where Qt looks for QML modules, below the folder of the libraries.
set(ZYN_INSTALL_QMLDIR ${CMAKE_INSTALL_LIBDIR}/qt6/qml)

add_library(zyn_options INTERFACE)
target_compile_features(zyn_options INTERFACE cxx_std_20)
target_compile_definitions(zyn_options INTERFACE
    _FILE_OFFSET_BITS=64
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_DISABLE_DEPRECATED_BEFORE=0x060400)
# Libraries and programs share precompiled headers, so programs are compiled with -fPIC, too.
target_compile_options(zyn_options INTERFACE
    -fPIC
    -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wundef
    $<$<COMPILE_LANGUAGE:CXX>:-Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual>
    $<$<BOOL:${ZYN_WARNINGS_AS_ERRORS}>:-Werror>)
if(ZYN_SANITIZE)
    target_compile_options(zyn_options INTERFACE
        -fsanitize=${ZYN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # Undefined behaviour is a trap: the texts that would tell of it make programs ten times as large, and gcc
        # guards each against overflows, so that they start three times as slowly.
        $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fsanitize-undefined-trap-on-error>)
    target_link_options(zyn_options INTERFACE -fsanitize=${ZYN_SANITIZE})
endif()

# Gives @p target the project's language level, warnings and include paths. MOC says that one of its headers has a
# Q_OBJECT; PRECOMPILED names other precompiled headers than the common ones, or NONE. The default visibility does not
# depend on a parent project: libraries hide names by their maps.
function(zyn_configure_target target)
    cmake_parse_arguments(ARG "MOC" "PRECOMPILED" "" ${ARGN})
    target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:zyn_options>)
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
    set_target_properties(${target} PROPERTIES
        AUTOMOC ${ARG_MOC}
        AUTOGEN_ORIGIN_DEPENDS OFF
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET default
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON
        LINK_DEPENDS_NO_SHARED ON)
    if(NOT ARG_PRECOMPILED)
        target_precompile_headers(${target} REUSE_FROM zynprecompiled)
    elseif(NOT ARG_PRECOMPILED STREQUAL NONE)
        target_precompile_headers(${target} REUSE_FROM ${ARG_PRECOMPILED})
    endif()
endfunction()

# Precompiles headers for the targets that reuse them. Sources still include what they use: the preset package compiles
# them without.
function(zyn_add_precompiled_headers target)
    cmake_parse_arguments(ARG "" "" "HEADERS;LIBRARIES" ${ARGN})
    file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp CONTENT "")
    add_library(${target} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp)
    zyn_configure_target(${target} PRECOMPILED NONE)
    target_link_libraries(${target} PRIVATE ${ARG_LIBRARIES})
    target_precompile_headers(${target} PRIVATE ${ARG_HEADERS})
endfunction()

# Headers that a hundred sources or more include, directly or not, and the costlier half of those that a third include.
zyn_add_precompiled_headers(zynprecompiled
    HEADERS
        <algorithm> <array> <chrono> <functional> <map> <memory> <optional> <span> <string_view> <vector>
        <QtCore/QByteArray> <QtCore/QCoreApplication> <QtCore/QDateTime> <QtCore/QFile> <QtCore/QJsonArray>
        <QtCore/QJsonDocument> <QtCore/QJsonObject> <QtCore/QList> <QtCore/QObject> <QtCore/QString>
        <QtCore/QStringList> <QtCore/QTimer>
    LIBRARIES Qt6::Core)

# A shared library with an exported interface. Its public headers are included by their paths from the top of the tree.
# Its map in abi/ alone decides what it exports: the public names and, for programs, tool and tests, the private ones of
# namespace zyn.
function(zyn_add_shared_library target)
    cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS" ${ARGN})
    add_library(${target} SHARED ${ARG_SOURCES})
    add_library(ZynPhone::${target} ALIAS ${target})
    zyn_configure_target(${target} MOC)
    target_compile_options(${target} PRIVATE
        $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-semantic-interposition -fno-gnu-unique>)
    target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARG_HEADERS})
    target_compile_features(${target} PUBLIC cxx_std_17)
    target_link_libraries(${target} PUBLIC Qt6::Core)
    set(exports ${PROJECT_SOURCE_DIR}/abi/lib${target}.map)
    target_link_options(${target} PRIVATE -Wl,--version-script=${exports})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exports})
    if(NOT ZYN_SANITIZE)
        target_link_options(${target} PRIVATE -Wl,--no-undefined)
    endif()
    set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
        INSTALL_RPATH "${ZYN_LIBRARY_RPATH}")
endfunction()

# The system's own prefix is searched anyway: there, @p target in @p folder loses its library path.
function(zyn_install_without_rpath target folder component)
    install(CODE "
if(CMAKE_INSTALL_PREFIX MATCHES \"^/(usr/?)?$\")
    set(file \"${folder}/$<TARGET_FILE_NAME:${target}>\")
    cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\")
    file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}\${file}\")
endif()" COMPONENT ${component})
endfunction()

# A program of the handset or a tool, installed into bin/ unless NO_INSTALL is given, with the tools unless COMPONENT
# names another package. MOC is as above.
function(zyn_add_program target)
    cmake_parse_arguments(ARG "NO_INSTALL;MOC" "COMPONENT" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${target} ${ARG_SOURCES})
    zyn_configure_target(${target})
    set_property(TARGET ${target} PROPERTY AUTOMOC ${ARG_MOC})
    target_link_libraries(${target} PRIVATE ${ARG_LIBRARIES})
    set_target_properties(${target} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin
        INSTALL_RPATH "${ZYN_PROGRAM_RPATH}")
    if(ARG_NO_INSTALL)
        return()
    endif()
    set(component ${ARG_COMPONENT})
    if(NOT component)
        set(component zynphone-tools)
    endif()
    set_property(GLOBAL APPEND PROPERTY ZYN_PROGRAMS ${target})
    set_property(TARGET ${target} PROPERTY ZYN_COMPONENT ${component})
    if(ZYN_INSTALL)
        install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
        zyn_install_without_rpath(${target} ${CMAKE_INSTALL_BINDIR} ${component})
    endif()
endfunction()
