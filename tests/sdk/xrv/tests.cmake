xrv_add_sdk_test(tst_xrvrecords)
xrv_add_writer_test(tst_xrvfile OPTIMIZED)
xrv_add_writer_test(tst_xrvdamage ${PROJECT_SOURCE_DIR}/tests/sdk/hostile/attempt.cpp)
xrv_add_writer_test(tst_texturedither)
