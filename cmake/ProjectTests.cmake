# xrv_add_test(NAME tst_x SOURCES ... LIBRARIES ... [INCLUDES ...] [LABELS ...] [SERIAL] [OPTIMIZED]): one test
# program, one ctest entry.
# All speak English, whatever the machine does.
# LABELS threads: is built and run under the thread sanitizer too. SERIAL: measures time or memory, so runs alone.
# OPTIMIZED: computes much by itself, so is compiled like the code that it tests.

include(CTest)

# The programs of the tests are compiled quickly, the code they test as it is for everyone.
function(xrv_compile_quickly target)
    if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
        target_compile_options(${target} PRIVATE -O0)
    endif()
endfunction()

if(BUILD_TESTING AND NOT XRV_PRECOMPILE STREQUAL "OFF")
    find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Test)
    xrv_add_precompiled(precompiled_tests ${precompiled_std_headers} <QtTest>)
    target_link_libraries(precompiled_tests PRIVATE Qt5::Core Qt5::Test)
    xrv_compile_quickly(precompiled_tests)
    xrv_add_precompiled(precompiled_gui_tests ${precompiled_std_headers} ${precompiled_gui_headers} <QtTest>)
    target_link_libraries(precompiled_gui_tests PRIVATE Qt5::Core Qt5::Gui Qt5::Widgets Qt5::Test)
    xrv_compile_quickly(precompiled_gui_tests)
endif()

# What has to be built for the tests with the label "threads".
add_custom_target(thread_tests)

# xrv_precompile_test(NAME LIBRARY...): with the headers for the modules of Qt that the libraries bring. There are none for
# tests that name other modules of Qt.
function(xrv_precompile_test name)
    if(XRV_PRECOMPILE STREQUAL "OFF" OR "${ARGN}" MATCHES "Qt5::(Gui|Network)")
        return()
    endif()
    set(headers precompiled_tests)
    foreach(library QDGui qdviewer_parts test_folder layer_test_support page_test_support)
        if(library IN_LIST ARGN)
            set(headers precompiled_gui_tests)
        endif()
    endforeach()
    xrv_reuse_precompiled(${headers} ${name})
    # There is next to nothing in it, and the headers take half a second to load.
    set_source_files_properties("${CMAKE_CURRENT_BINARY_DIR}/${name}_autogen/mocs_compilation.cpp" PROPERTIES
                                SKIP_PRECOMPILE_HEADERS ON)
endfunction()

function(xrv_add_test)
    cmake_parse_arguments(TEST "SERIAL;OPTIMIZED" "NAME" "SOURCES;LIBRARIES;INCLUDES;LABELS" ${ARGN})
    add_executable(${TEST_NAME} ${TEST_SOURCES})
    target_link_libraries(${TEST_NAME} PRIVATE project_options ${TEST_LIBRARIES})
    target_include_directories(${TEST_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests ${TEST_INCLUDES})
    set_target_properties(${TEST_NAME} PROPERTIES AUTOMOC ON RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
    if(NOT TEST_OPTIMIZED)
        xrv_compile_quickly(${TEST_NAME})
        xrv_precompile_test(${TEST_NAME} ${TEST_LIBRARIES})
    endif()
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
