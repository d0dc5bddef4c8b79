xrv_add_sdk_test(tst_config)
xrv_add_sdk_test(tst_logger LABELS threads)
xrv_add_sdk_test(tst_configeffects ${PROJECT_SOURCE_DIR}/tests/data/jp2maker.cpp)
