# xrv_add_test(NAME tst_x SOURCES ... LIBRARIES ... [INCLUDES ...] [LABELS ...] [SERIAL]): one test program, one ctest entry.
# All speak English, whatever the machine does.
# LABELS threads: is built and run under the thread sanitizer too. SERIAL: measures time or memory, so runs alone.

include(CTest)

# What has to be built for the tests with the label "threads".
add_custom_target(thread_tests)

function(xrv_add_test)
    cmake_parse_arguments(TEST "SERIAL" "NAME" "SOURCES;LIBRARIES;INCLUDES;LABELS" ${ARGN})
    add_executable(${TEST_NAME} ${TEST_SOURCES})
    target_link_libraries(${TEST_NAME} PRIVATE project_options ${TEST_LIBRARIES})
    target_include_directories(${TEST_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${TEST_INCLUDES})
    set_target_properties(${TEST_NAME} PROPERTIES AUTOMOC ON RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
    add_test(NAME ${TEST_NAME} COMMAND ${TEST_NAME})
    if("threads" IN_LIST TEST_LABELS)
        add_dependencies(thread_tests ${TEST_NAME})
    endif()
    if(TEST_SERIAL)
        set_tests_properties(${TEST_NAME} PROPERTIES RUN_SERIAL ON)
    endif()
    set_tests_properties(${TEST_NAME} PROPERTIES TIMEOUT 300 LABELS "${TEST_LABELS}" ENVIRONMENT
        "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0;TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp")
endfunction()
