# Finds libmnl, which has no file for CMake: target MNL::MNL.
find_path(MNL_INCLUDE_DIR libmnl/libmnl.h)
find_library(MNL_LIBRARY mnl)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(MNL REQUIRED_VARS MNL_LIBRARY MNL_INCLUDE_DIR)
if(MNL_FOUND AND NOT TARGET MNL::MNL)
    add_library(MNL::MNL UNKNOWN IMPORTED)
    set_target_properties(MNL::MNL PROPERTIES
        IMPORTED_LOCATION ${MNL_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${MNL_INCLUDE_DIR})
endif()
