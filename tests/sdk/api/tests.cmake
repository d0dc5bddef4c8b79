xrv_add_sdk_test(tst_config)
xrv_add_sdk_test(tst_fileclient LABELS threads)
xrv_add_sdk_test(tst_view LABELS threads)
