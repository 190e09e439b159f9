# Included by the toolchain file of each architecture, which sets its name (architecture) and the prefix
# of Debian's cross compiler (triplet). The libraries are those that cross/sysroot has unpacked.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${triplet}-gcc)
set(CMAKE_CXX_COMPILER ${triplet}-g++)

execute_process(COMMAND "${CMAKE_CURRENT_LIST_DIR}/folder" OUTPUT_VARIABLE folder
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CMAKE_SYSROOT "${folder}/${architecture}/sysroot")
if(NOT EXISTS "${CMAKE_SYSROOT}/usr/include")
    message(FATAL_ERROR "no libraries in ${CMAKE_SYSROOT}: run cross/sysroot ${architecture}")
endif()

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
