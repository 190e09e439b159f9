# The console's processor: 32-bit ARM with hardware floating point, built with Debian's cross
# compiler. The libraries are those that cross/sysroot has unpacked.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)

execute_process(COMMAND "${CMAKE_CURRENT_LIST_DIR}/folder" OUTPUT_VARIABLE folder
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CMAKE_SYSROOT "${folder}/armhf/sysroot")
if(NOT EXISTS "${CMAKE_SYSROOT}/usr/include")
    message(FATAL_ERROR "no libraries in ${CMAKE_SYSROOT}: run cross/sysroot")
endif()

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
