set(stage_sources bandcounter.cpp bandrows.cpp fileclient.cpp openfile.cpp sourcestream.cpp statistics.cpp viewmetadata.cpp)
