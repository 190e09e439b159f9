# Debian packages, one for each install component: `cmake --build BUILD --target package`.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Each description below has its own first line.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Console manager maintainers <maintainers@localhost>")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian-permissions.cmake)

# SONAME VERSION lines of control files for what links to the libraries, see deb-shlibs(5), and the
# trigger that makes ldconfig run.
function(shared_libraries component package)
    set(folder ${PROJECT_BINARY_DIR}/control/${component})
    list(TRANSFORM ARGN APPEND " ${package} (>= ${PROJECT_VERSION})\n")
    list(JOIN ARGN "" shlibs)
    file(CONFIGURE OUTPUT ${folder}/shlibs CONTENT "${shlibs}")
    file(CONFIGURE OUTPUT ${folder}/triggers CONTENT "activate-noawait ldconfig\n")
    string(TOUPPER ${component} component)
    set(CPACK_DEBIAN_${component}_PACKAGE_NAME ${package} PARENT_SCOPE)
    set(CPACK_DEBIAN_${component}_PACKAGE_SECTION libs PARENT_SCOPE)
    set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA ${folder}/shlibs ${folder}/triggers
        PARENT_SCOPE)
endfunction()

# The dependencies are written down because dpkg-shlibdeps knows only the libraries of the machine
# that builds. A test compares.
set(runtime libm7-console-manager-library0)
shared_libraries(runtime ${runtime} "libm7-console-manager-library 0")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${PROJECT_DESCRIPTION}
The library that a console's applications load, and console-status, which
prints a report of all that the library knows.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libc6 (>= 2.34), libgcc-s1 (>= 3.5), \
libmnl0 (>= 1.0.3-4~), libsqlite3-0 (>= 3.5.9), libstdc++6 (>= 9)")
# A console has the closed libraries without a package; ping asks whether a host is reachable.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "iputils-ping, libm7-platform-stand-ins")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libm7-console-manager-library-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "${PROJECT_DESCRIPTION} (development)
Headers, pkg-config file and CMake package for building applications.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${runtime} (= ${PROJECT_VERSION})")

shared_libraries(stand-ins libm7-platform-stand-ins
    "libm7-data-access-library 0" "libm7-trace-debug 0" "libqor-core 2")
set(CPACK_DEBIAN_STAND-INS_DESCRIPTION "Stand-ins for the closed libraries of a driver's console
Data access, trace and logging libraries under the sonames of those that a
console has already; for all other machines.")
set(CPACK_DEBIAN_STAND-INS_PACKAGE_DEPENDS "libc6 (>= 2.14), libgcc-s1 (>= 3.5), \
libsqlite3-0 (>= 3.20.0), libstdc++6 (>= 5)")

include(CPack)
