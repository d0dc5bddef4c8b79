set(stage_sources byterangeset.cpp cachedstream.cpp cachefolder.cpp cacheindex.cpp checksum.cpp fileversion.cpp
    httpclient.cpp httptransfer.cpp knowncredentials.cpp rangeanswer.cpp rangeassembly.cpp rangefetcher.cpp rangeplan.cpp
    segmentstore.cpp serverlink.cpp servertraits.cpp streamaddress.cpp streamcache.cpp streamoptions.cpp
    streamsource.cpp wholefilesink.cpp)
if(WIN32)
    list(APPEND stage_sources diskfile_windows.cpp)
else()
    list(APPEND stage_sources diskfile_posix.cpp)
endif()
