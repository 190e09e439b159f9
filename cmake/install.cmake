# Installation by component. runtime: what a console needs; development: headers and files for building
# applications; stand-ins: for machines without the closed libraries. The component console-status is in
# tools/console-status.

# Debian's folder for libraries, in which its loader, linker, pkg-config and CMake search, also for cross
# builds and for prefixes other than /usr.
if(CMAKE_LIBRARY_ARCHITECTURE AND NOT DEFINED CMAKE_INSTALL_LIBDIR)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Folder for libraries")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS console-manager LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
install(DIRECTORY include/console-manager TYPE INCLUDE COMPONENT development)
install(TARGETS stand-in-data-access stand-in-trace-debug stand-in-qor-core
        LIBRARY NAMELINK_SKIP COMPONENT stand-ins)

# The file for pkg-config has the prefix in it, which "cmake --install --prefix" may change.
set(prefix @prefix@)
cmake_path(APPEND prefix ${CMAKE_INSTALL_LIBDIR} OUTPUT_VARIABLE libdir)
cmake_path(APPEND prefix ${CMAKE_INSTALL_INCLUDEDIR} OUTPUT_VARIABLE includedir)
configure_file(cmake/console-manager.pc.in console-manager.pc.in @ONLY)
install(CODE "
    cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_PREFIX OUTPUT_VARIABLE prefix)
    configure_file([[${PROJECT_BINARY_DIR}/console-manager.pc.in]]
                   [[${PROJECT_BINARY_DIR}/console-manager.pc]] @ONLY)
" COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/console-manager.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

set(config_folder ${CMAKE_INSTALL_LIBDIR}/cmake/console-manager)
configure_package_config_file(cmake/console-manager-config.cmake.in console-manager-config.cmake
    INSTALL_DESTINATION ${config_folder} PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file(console-manager-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/console-manager-config.cmake
              ${PROJECT_BINARY_DIR}/console-manager-config-version.cmake
        DESTINATION ${config_folder} COMPONENT development)
