set(stage_sources faultlog.cpp logger.cpp physicalmemory.cpp plkconfig.cpp plkfile.cpp plkinit.cpp)
