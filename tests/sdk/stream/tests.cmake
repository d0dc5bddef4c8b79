# These tests bring servers of their own, on sockets of the POSIX kind.
if(UNIX)
    xrv_add_sdk_test(tst_streamview ${stage_dir}/nginxserver.cpp ${stage_dir}/loopback.cpp
                     ${PROJECT_SOURCE_DIR}/tests/data/jp2maker.cpp LABELS threads)
endif()
