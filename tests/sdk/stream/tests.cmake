xrv_add_sdk_test(tst_streamparts)
# These tests bring servers of their own, on sockets of the POSIX kind.
if(UNIX)
    set(fault_server ${stage_dir}/faultserver.cpp ${stage_dir}/webfile.cpp ${stage_dir}/loopback.cpp)
    xrv_add_sdk_test(tst_streamfaults ${fault_server} LABELS threads)
    xrv_add_sdk_test(tst_streamcache ${fault_server} LABELS threads)
    xrv_add_sdk_test(tst_opencontrol ${fault_server} ${PROJECT_SOURCE_DIR}/tests/data/jp2maker.cpp LABELS threads)
    xrv_add_sdk_test(tst_streamview ${stage_dir}/nginxserver.cpp ${stage_dir}/loopback.cpp
                     ${PROJECT_SOURCE_DIR}/tests/data/jp2maker.cpp LABELS threads)
endif()
