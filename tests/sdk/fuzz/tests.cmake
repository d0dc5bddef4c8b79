xrv_add_sdk_test(tst_mutations ${stage_dir}/fuzz_boxes.cpp)
