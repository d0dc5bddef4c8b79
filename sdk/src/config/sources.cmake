set(stage_sources logger.cpp physicalmemory.cpp plkconfig.cpp plkfile.cpp plkinit.cpp)
