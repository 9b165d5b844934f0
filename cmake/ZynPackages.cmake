# The Debian packages, one for each component; their texts are in packaging/. See scripts/package.
set(packaging ${PROJECT_SOURCE_DIR}/packaging)

# The newest entry of the changelog gives the packages their version.
file(STRINGS ${packaging}/changelog entry LIMIT_COUNT 1)
if(NOT entry MATCHES "^zynphone \\(${PROJECT_VERSION}-([0-9]+)\\) ")
    message(FATAL_ERROR "packaging/changelog has no entry for ${PROJECT_VERSION} at its top")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE ${CMAKE_MATCH_1})
set(version ${PROJECT_VERSION}-${CMAKE_MATCH_1})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zynphone)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGE_CONTACT "ZynPhone developers <developers@zynphone.invalid>")
set(CPACK_COMPONENTS_ALL libzynphone1 libzynphone-dev zynphone-tools)
if(NOT CMAKE_CROSSCOMPILING) # it is the same for every machine
    list(APPEND CPACK_COMPONENTS_ALL libzynphone-doc)
endif()
if(TARGET zynmodem)
    list(APPEND CPACK_COMPONENTS_ALL zynphone-modem)
endif()
if(TARGET zynphoneqml)
    list(APPEND CPACK_COMPONENTS_ALL qml6-module-zynphone)
endif()
if(TARGET zyn-handset)
    list(APPEND CPACK_COMPONENTS_ALL zynphone-handset)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE zynphone)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${ZYN_ARCHITECTURE}) # empty is this machine's
set(CPACK_ZYN_STRIP ${CMAKE_STRIP})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Packages depend on what their files link to. Our own libraries are in no installed package, so they are named here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
foreach(library IN ITEMS zynphone zynplatform)
    get_target_property(folder ${library} BINARY_DIR)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${folder})
endforeach()
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# Describes one package; REPLACES names packages, with versions, that had files of its own. CPack has no variable for
# Multi-Arch: that field follows the section's on a line of its own.
function(zyn_package component)
    cmake_parse_arguments(ARG ""
        "SECTION;MULTIARCH;ARCHITECTURE" "DEPENDS;RECOMMENDS;SUGGESTS;REPLACES;CONTROL_EXTRA" ${ARGN})
    string(TOUPPER ${component} COMPONENT)
    if(ARG_MULTIARCH)
        string(APPEND ARG_SECTION "\nMulti-Arch: ${ARG_MULTIARCH}")
    endif()
    foreach(field IN ITEMS DEPENDS RECOMMENDS SUGGESTS REPLACES)
        list(JOIN ARG_${field} ", " ARG_${field})
        set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_${field} "${ARG_${field}}" PARENT_SCOPE)
    endforeach()
    set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_BREAKS "${ARG_REPLACES}" PARENT_SCOPE)
    if(ARG_ARCHITECTURE)
        set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_ARCHITECTURE ${ARG_ARCHITECTURE} PARENT_SCOPE)
    endif()
    file(READ ${packaging}/${component}/description description)
    set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME ${component} PARENT_SCOPE)
    set(CPACK_DEBIAN_${COMPONENT}_DESCRIPTION "${description}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_SECTION "${ARG_SECTION}" PARENT_SCOPE)
    set(CPACK_DEBIAN_${COMPONENT}_PACKAGE_CONTROL_EXTRA "${ARG_CONTROL_EXTRA}" PARENT_SCOPE)
endfunction()

# CPack writes maintainer scripts that call ldconfig unless it is given others. These do not exist, so the package has
# none: its trigger runs ldconfig.
set(no_scripts ${packaging}/none/postinst ${packaging}/none/postrm)

zyn_package(libzynphone1 SECTION libs MULTIARCH same
    CONTROL_EXTRA ${packaging}/libzynphone1/triggers ${no_scripts})
zyn_package(libzynphone-dev SECTION libdevel DEPENDS "libzynphone1 (= ${version})" qt6-base-dev)
zyn_package(libzynphone-doc SECTION doc MULTIARCH foreign ARCHITECTURE all
    SUGGESTS libzynphone-dev REPLACES "libzynphone-dev (<< 1.0.0-2)")
zyn_package(zynphone-tools SECTION devel DEPENDS "libzynphone1 (= ${version})")
if(TARGET zynmodem)
    zyn_package(zynphone-modem SECTION comm DEPENDS "libzynphone1 (= ${version})" "zynphone-tools (= ${version})"
        RECOMMENDS "ofono | modemmanager" upower)
endif()
# A QML file can do without Qt Quick, not without Qt's own types.
if(TARGET zynphoneqml)
    zyn_package(qml6-module-zynphone SECTION libs MULTIARCH same
        DEPENDS "libzynphone1 (= ${version})" qml6-module-qtqml RECOMMENDS qml6-module-qtquick)
endif()
# Dependencies on libraries are found, those on QML modules are not: what its files import, and what that imports.
if(TARGET zyn-handset)
    zyn_package(zynphone-handset SECTION comm
        DEPENDS "qml6-module-zynphone (= ${version})" "zynphone-tools (= ${version})"
            qml6-module-qtqml qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-layouts
            qml6-module-qtquick-templates qml6-module-qtquick-window
        RECOMMENDS "fonts-dejavu-core | fonts-noto-core")
endif()

# Packs what an installation into the system puts there, below another root.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_PROJECT_CONFIG_FILE ${packaging}/requirements.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${packaging}/finish.cmake)
include(CPack)
