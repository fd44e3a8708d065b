# Tests of the preparation of masks and cut-outs.
add_executable(prepare_tests
    pool/faults.cpp
    prepare/clean_test.cpp
    prepare/failure_test.cpp
    prepare/outline_test.cpp
    prepare/paste_test.cpp
    prepare/scenes.cpp)
# The library's headers come first: both trees have folders of the same names.
target_include_directories(prepare_tests PRIVATE
    ${PROJECT_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(prepare_tests PRIVATE
    imageblend_flags test_support imageblend_prepare GTest::gtest_main)
wrap_faults(prepare_tests)
gtest_discover_tests(prepare_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
