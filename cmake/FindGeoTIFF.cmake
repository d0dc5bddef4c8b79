# Finds libgeotiff, which Debian ships without a pkg-config file. Target: GeoTIFF::GeoTIFF
find_path(GEOTIFF_INCLUDE_DIR NAMES geotiff.h PATH_SUFFIXES geotiff libgeotiff)
find_library(GEOTIFF_LIBRARY NAMES geotiff geotiff_i)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(GeoTIFF REQUIRED_VARS GEOTIFF_LIBRARY GEOTIFF_INCLUDE_DIR)
if(GeoTIFF_FOUND AND NOT TARGET GeoTIFF::GeoTIFF)
    add_library(GeoTIFF::GeoTIFF UNKNOWN IMPORTED)
    set_target_properties(GeoTIFF::GeoTIFF PROPERTIES IMPORTED_LOCATION "${GEOTIFF_LIBRARY}"
                          INTERFACE_INCLUDE_DIRECTORIES "${GEOTIFF_INCLUDE_DIR}")
endif()
