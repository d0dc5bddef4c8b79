set(stage_sources byterangeset.cpp fileversion.cpp httpclient.cpp httptransfer.cpp rangeanswer.cpp rangeassembly.cpp
    rangefetcher.cpp rangeplan.cpp segmentstore.cpp serverlink.cpp servertraits.cpp streamaddress.cpp streamoptions.cpp
    streamsource.cpp)
