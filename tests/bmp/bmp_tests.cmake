# Tests of the bitmap dumps.
add_executable(bmp_tests
    bmp/bmp_files.cpp
    bmp/bmp_foreign_test.cpp
    bmp/bmp_test.cpp
    pool/faults.cpp)
# Both trees have a folder bmp, and the library's comes first.
target_include_directories(bmp_tests PRIVATE ${PROJECT_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(bmp_tests PRIVATE imageblend_flags imageblend_bmp GTest::gtest_main)
# pool/faults.cpp takes these calls over.
foreach(function malloc calloc free pthread_create pthread_join pthread_mutex_init
                 pthread_cond_init)
    target_link_options(bmp_tests PRIVATE -Wl,--wrap=${function})
endforeach()
gtest_discover_tests(bmp_tests DISCOVERY_TIMEOUT 60)
