xrv_add_sdk_test(tst_conformance ${stage_dir}/referencefiles.cpp)
