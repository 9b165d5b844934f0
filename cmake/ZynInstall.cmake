# Libraries, headers and the CMake package: find_package(ZynPhone) gives ZynPhone::zynphone and ZynPhone::zynplatform;
# with COMPONENTS Qml it also tells where the QML module is.
# Each component is one of the packages in cmake/ZynPackages.cmake.
include(CMakePackageConfigHelpers)

set(ZYN_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/zynphone)
set(ZYN_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZynPhone)

install(TARGETS zynplatform zynphone
    EXPORT ZynPhoneTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT libzynphone1 NAMELINK_COMPONENT libzynphone-dev
    FILE_SET HEADERS DESTINATION ${ZYN_INSTALL_INCLUDEDIR} COMPONENT libzynphone-dev
    INCLUDES DESTINATION ${ZYN_INSTALL_INCLUDEDIR})
foreach(library IN ITEMS zynplatform zynphone)
    zyn_install_without_rpath(${library} ${CMAKE_INSTALL_LIBDIR} libzynphone1)
endforeach()
install(EXPORT ZynPhoneTargets NAMESPACE ZynPhone:: DESTINATION ${ZYN_INSTALL_CMAKEDIR}
    COMPONENT libzynphone-dev)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZynPhoneConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/ZynPhoneConfig.cmake INSTALL_DESTINATION ${ZYN_INSTALL_CMAKEDIR}
    PATH_VARS CMAKE_INSTALL_BINDIR ZYN_INSTALL_QMLDIR)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZynPhoneConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZynPhoneConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZynPhoneConfigVersion.cmake
    ${CMAKE_CURRENT_LIST_DIR}/ZynPhoneTesting.cmake
    DESTINATION ${ZYN_INSTALL_CMAKEDIR} COMPONENT libzynphone-dev)

# The pkg-config file. An absolute folder gets no prefix.
cmake_path(APPEND pc_libdir "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
cmake_path(APPEND pc_includedir "\${prefix}" "${ZYN_INSTALL_INCLUDEDIR}")
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
    BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE prefix_from_pkgconfig)
configure_file(${CMAKE_CURRENT_LIST_DIR}/zynphone.pc.in ${CMAKE_CURRENT_BINARY_DIR}/zynphone.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zynphone.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT libzynphone-dev)

# What is there to be read is one component, and lies as in the source tree, so that the links of the documents lead
# somewhere: README, documents, the examples, and the days that they name.
set(ZYN_INSTALL_DOCUMENTS ${CMAKE_INSTALL_DATADIR}/doc/libzynphone-dev)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${ZYN_INSTALL_DOCUMENTS} COMPONENT libzynphone-doc)
install(FILES handset/day/desk.day handset/day/modem.day
    DESTINATION ${ZYN_INSTALL_DOCUMENTS}/handset/day COMPONENT libzynphone-doc)
install(DIRECTORY docs DESTINATION ${ZYN_INSTALL_DOCUMENTS} COMPONENT libzynphone-doc
    FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.svg" PATTERN man EXCLUDE PATTERN reference EXCLUDE)
install(DIRECTORY examples DESTINATION ${ZYN_INSTALL_DOCUMENTS} COMPONENT libzynphone-doc
    FILES_MATCHING PATTERN CMakeLists.txt PATTERN Makefile PATTERN "*.[ch]*" PATTERN "*.qml" PATTERN "*.sh")
