xrv_add_sdk_test(tst_hostile ${stage_dir}/attempt.cpp SERIAL)
