xrv_add_sdk_test(tst_logger LABELS threads)
