set(stage_sources bytesource.cpp filenames.cpp filesource.cpp memorysource.cpp plkerror.cpp plkopencontrol.cpp
    plkstring.cpp
    utf8.cpp)
if(WIN32)
    list(APPEND stage_sources localfile_windows.cpp)
else()
    list(APPEND stage_sources localfile_posix.cpp)
endif()
