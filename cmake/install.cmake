# What is installed, by component. runtime: what a console needs; development: what building an
# application needs besides; stand-ins: for machines that lack the closed libraries. console-status
# is a component of its own: tools/console-status.

# Debian's folder for libraries, where its loader, linker, pkg-config and CMake look: cross builds and
# prefixes other than /usr get it, too.
if(CMAKE_LIBRARY_ARCHITECTURE AND NOT DEFINED CMAKE_INSTALL_LIBDIR)
    set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Folder for libraries")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS console-manager LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
install(DIRECTORY include/console-manager TYPE INCLUDE COMPONENT development)
install(TARGETS stand-in-data-access stand-in-trace-debug stand-in-qor-core
        LIBRARY NAMELINK_SKIP COMPONENT stand-ins)

# What is installed may be moved as a whole: pkg-config and CMake find the prefix from where they are.
file(RELATIVE_PATH PREFIX_SEEN_FROM_PC "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/console-manager.pc.in console-manager.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/console-manager.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

set(config_folder ${CMAKE_INSTALL_LIBDIR}/cmake/console-manager)
configure_package_config_file(cmake/console-manager-config.cmake.in console-manager-config.cmake
    INSTALL_DESTINATION ${config_folder} PATH_VARS CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file(console-manager-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/console-manager-config.cmake
              ${PROJECT_BINARY_DIR}/console-manager-config-version.cmake
        DESTINATION ${config_folder} COMPONENT development)
