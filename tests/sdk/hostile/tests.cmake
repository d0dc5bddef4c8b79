xrv_add_sdk_test(tst_hostile ${stage_dir}/attempt.cpp ${PROJECT_SOURCE_DIR}/tests/data/jp2maker.cpp SERIAL)
