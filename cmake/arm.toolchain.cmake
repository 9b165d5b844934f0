# Builds for an ARM processor against the libraries that scripts/arm-sysroot unpacked: ZYN_ARCHITECTURE is Debian's name
# of it, armhf (32 bits) or arm64.
set(ZYN_ARCHITECTURE armhf CACHE STRING "Debian's name of the ARM processor to build for: armhf or arm64")
set(processor_armhf arm)
set(triplet_armhf arm-linux-gnueabihf)
set(processor_arm64 aarch64)
set(triplet_arm64 aarch64-linux-gnu)
if(NOT triplet_${ZYN_ARCHITECTURE})
    message(FATAL_ERROR "ZYN_ARCHITECTURE is armhf or arm64, not ${ZYN_ARCHITECTURE}")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${processor_${ZYN_ARCHITECTURE}})
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet_${ZYN_ARCHITECTURE}})
set(CMAKE_C_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-gcc)
set(CMAKE_CXX_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-g++)
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi) # one compiler builds everything
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZYN_ARCHITECTURE)

get_filename_component(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/${ZYN_ARCHITECTURE}-sysroot ABSOLUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/on-arm ${ZYN_ARCHITECTURE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH) # ZynPhone may be installed anywhere

# moc runs on this machine.
set(QT_HOST_PATH /usr)
file(GLOB QT_HOST_PATH_CMAKE_DIR ${QT_HOST_PATH}/lib/*-linux-gnu/cmake)
