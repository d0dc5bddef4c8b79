xrv_add_sdk_test(tst_conformance ${stage_dir}/pgxreader.cpp ${stage_dir}/tiffpicture.cpp)
