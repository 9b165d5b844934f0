# Libraries, headers and the CMake package: find_package(ZynPhone) gives ZynPhone::zynphone and ZynPhone::zynplatform.
include(CMakePackageConfigHelpers)

set(ZYN_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/zynphone)
set(ZYN_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZynPhone)

install(TARGETS zynplatform zynphone
    EXPORT ZynPhoneTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${ZYN_INSTALL_INCLUDEDIR}
    INCLUDES DESTINATION ${ZYN_INSTALL_INCLUDEDIR})
install(EXPORT ZynPhoneTargets NAMESPACE ZynPhone:: DESTINATION ${ZYN_INSTALL_CMAKEDIR})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ZynPhoneConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/ZynPhoneConfig.cmake INSTALL_DESTINATION ${ZYN_INSTALL_CMAKEDIR})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZynPhoneConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZynPhoneConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZynPhoneConfigVersion.cmake
    DESTINATION ${ZYN_INSTALL_CMAKEDIR})

# The same for pkg-config, and what to begin with.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
    BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE prefix_from_pkgconfig)
configure_file(${CMAKE_CURRENT_LIST_DIR}/zynphone.pc.in ${CMAKE_CURRENT_BINARY_DIR}/zynphone.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zynphone.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT libzynphone-dev)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libzynphone-dev/examples
    COMPONENT libzynphone-dev
    FILES_MATCHING PATTERN CMakeLists.txt PATTERN Makefile PATTERN "*.[ch]*"
    PATTERN demo EXCLUDE)
