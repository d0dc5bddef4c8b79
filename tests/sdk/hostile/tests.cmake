xrv_add_writer_test(tst_hostile ${stage_dir}/attempt.cpp SERIAL)
