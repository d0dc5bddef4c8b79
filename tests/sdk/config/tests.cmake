xrv_add_sdk_test(tst_config)
xrv_add_sdk_test(tst_logger LABELS threads)
