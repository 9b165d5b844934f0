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
