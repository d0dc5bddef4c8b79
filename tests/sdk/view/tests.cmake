xrv_add_sdk_test(tst_viewgeometry)
xrv_add_sdk_test(tst_viewoutput)
xrv_add_sdk_test(tst_viewengine LABELS threads)
xrv_add_sdk_test(tst_view LABELS threads)
