# The console's processor: 32-bit ARM with hardware floating point, built with Debian's cross
# compiler. The libraries are those that tests/board/sysroot has unpacked.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)

if(DEFINED ENV{CONSOLE_BOARD_FOLDER})
    set(CMAKE_SYSROOT "$ENV{CONSOLE_BOARD_FOLDER}/sysroot")
elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(CMAKE_SYSROOT "$ENV{XDG_CACHE_HOME}/console-manager-board/sysroot")
else()
    set(CMAKE_SYSROOT "$ENV{HOME}/.cache/console-manager-board/sysroot")
endif()
if(NOT EXISTS "${CMAKE_SYSROOT}/usr/include")
    message(FATAL_ERROR "No libraries for the board in ${CMAKE_SYSROOT}: run tests/board/sysroot")
endif()

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Without these pkg-config would answer with the libraries of the machine that builds.
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${CMAKE_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
    "${CMAKE_SYSROOT}/usr/lib/arm-linux-gnueabihf/pkgconfig:${CMAKE_SYSROOT}/usr/share/pkgconfig")
