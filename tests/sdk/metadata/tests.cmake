xrv_add_sdk_test(tst_statistics)
xrv_add_sdk_test(tst_fileclient ${PROJECT_SOURCE_DIR}/tests/data/jp2maker.cpp LABELS threads)
