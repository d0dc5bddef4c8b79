xrv_add_sdk_test(tst_streamparts)
# These tests bring servers of their own, on sockets of the POSIX kind.
if(UNIX)
    foreach(name streamfaults streamcache opencontrol streamview)
        xrv_add_sdk_test(tst_${name} LABELS threads)
        target_link_libraries(tst_${name} PRIVATE test_servers)
    endforeach()
endif()
