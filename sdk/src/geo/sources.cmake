set(stage_sources crsnames.cpp geojp2.cpp geokeys.cpp georeference.cpp gmlcrs.cpp gmlinjp2.cpp placement.cpp rpc.cpp
    sidefile.cpp tifffile.cpp worldfile.cpp)
