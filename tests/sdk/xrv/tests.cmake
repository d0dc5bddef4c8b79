# The writer makes what these tests read.
function(xrv_add_writer_test name)
    xrv_add_sdk_test(${name} ${PROJECT_SOURCE_DIR}/tests/data/syntheticimage.cpp ${ARGN})
    target_link_libraries(${name} PRIVATE xrv60_writer)
endfunction()

xrv_add_sdk_test(tst_xrvrecords)
xrv_add_writer_test(tst_xrvfile)
target_link_libraries(tst_xrvfile PRIVATE test_peerdecoder)
xrv_add_writer_test(tst_xrvdamage ${PROJECT_SOURCE_DIR}/tests/sdk/hostile/attempt.cpp)
xrv_add_writer_test(tst_xrvdistant LABELS threads)
xrv_add_writer_test(tst_texturedither)
xrv_add_sdk_test(tst_xrvmutations ${PROJECT_SOURCE_DIR}/tests/fuzz/fuzz_xrv.cpp)
