xrv_add_sdk_test(tst_jp2structure)
xrv_add_sdk_test(tst_jp2damage)
xrv_add_sdk_test(tst_boxmutations ${PROJECT_SOURCE_DIR}/tests/fuzz/fuzz_boxes.cpp)
