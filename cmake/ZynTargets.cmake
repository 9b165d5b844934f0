# What every target of this project has in common. Set on our own targets only, so that a parent project keeps its
# flags.

# Everything finds the libraries from where it stands, in whatever prefix that is.
file(RELATIVE_PATH libraries_from_programs ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set(ZYN_LIBRARY_RPATH "$ORIGIN")
set(ZYN_PROGRAM_RPATH "$ORIGIN/${libraries_from_programs}")

add_library(zyn_options INTERFACE)
target_compile_features(zyn_options INTERFACE cxx_std_20)
target_compile_definitions(zyn_options INTERFACE
    _FILE_OFFSET_BITS=64
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_DISABLE_DEPRECATED_BEFORE=0x060400)
# What is compiled ahead serves libraries and programs: both are compiled for libraries.
target_compile_options(zyn_options INTERFACE
    -fPIC
    -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wundef
    $<$<COMPILE_LANGUAGE:CXX>:-Wconversion -Wsign-conversion -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual>
    $<$<BOOL:${ZYN_WARNINGS_AS_ERRORS}>:-Werror>)
if(ZYN_SANITIZE)
    target_compile_options(zyn_options INTERFACE
        -fsanitize=${ZYN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zyn_options INTERFACE -fsanitize=${ZYN_SANITIZE})
endif()

# Applies the project's language level and warnings to @p target, which may use the sources' include paths. MOC says
# that one of its headers has a Q_OBJECT; PRECOMPILED names another header than everyone's, or NONE. What a library
# hides is its map's to say, whatever a parent project's default is.
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

# Headers that are compiled once for all targets that say so. A source includes what it uses all the same: it must
# compile without them, as scripts/check arm has it.
function(zyn_add_precompiled_headers target)
    cmake_parse_arguments(ARG "" "" "HEADERS;LIBRARIES" ${ARGN})
    file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp CONTENT "")
    add_library(${target} OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp)
    zyn_configure_target(${target} PRECOMPILED NONE)
    target_link_libraries(${target} PRIVATE ${ARG_LIBRARIES})
    target_precompile_headers(${target} PRIVATE ${ARG_HEADERS})
endfunction()

# What a hundred sources or more include, directly or not, and the costlier half of what a third does.
zyn_add_precompiled_headers(zynprecompiled
    HEADERS
        <algorithm> <array> <chrono> <functional> <map> <memory> <optional> <span> <string_view> <vector>
        <QtCore/QByteArray> <QtCore/QCoreApplication> <QtCore/QDateTime> <QtCore/QFile> <QtCore/QJsonArray>
        <QtCore/QJsonDocument> <QtCore/QJsonObject> <QtCore/QList> <QtCore/QObject> <QtCore/QString> <QtCore/QStringList>
        <QtCore/QTimer>
    LIBRARIES Qt6::Core)

# A shared library of the exported interface: its public headers are included by their path from the top of the tree.
# What leaves the library is decided by its map in abi/ alone: with the public names the private ones of namespace zyn,
# for programs, tool and tests.
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

# The system's own prefix is searched anyway: what @p target has put into @p folder there carries no path of its own.
function(zyn_install_without_rpath target folder component)
    install(CODE "
if(CMAKE_INSTALL_PREFIX MATCHES \"^/(usr/?)?$\")
    set(file \"${folder}/$<TARGET_FILE_NAME:${target}>\")
    cmake_path(ABSOLUTE_PATH file BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\")
    file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}\${file}\")
endif()" COMPONENT ${component})
endfunction()

# A program of the handset or of the developer; installed into bin/ unless NO_INSTALL is given. MOC as above.
function(zyn_add_program target)
    cmake_parse_arguments(ARG "NO_INSTALL;MOC" "" "SOURCES;LIBRARIES" ${ARGN})
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
    set_property(GLOBAL APPEND PROPERTY ZYN_PROGRAMS ${target})
    if(ZYN_INSTALL)
        install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT zynphone-tools)
        zyn_install_without_rpath(${target} ${CMAKE_INSTALL_BINDIR} zynphone-tools)
    endif()
endfunction()
