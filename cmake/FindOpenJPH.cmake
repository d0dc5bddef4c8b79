# OpenJPH, the encoder of high-throughput code-blocks: the target OpenJPH::OpenJPH. Debian's pkg-config file of it is empty.

find_path(OpenJPH_INCLUDE_DIR openjph/ojph_codestream.h)
find_library(OpenJPH_LIBRARY openjph)
mark_as_advanced(OpenJPH_INCLUDE_DIR OpenJPH_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenJPH REQUIRED_VARS OpenJPH_LIBRARY OpenJPH_INCLUDE_DIR)

if(OpenJPH_FOUND AND NOT TARGET OpenJPH::OpenJPH)
    add_library(OpenJPH::OpenJPH UNKNOWN IMPORTED)
    set_target_properties(OpenJPH::OpenJPH PROPERTIES IMPORTED_LOCATION "${OpenJPH_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${OpenJPH_INCLUDE_DIR}")
endif()
