set(stage_sources xrvrecords.cpp xrvstructure.cpp)
