# Tests of the library's inner functions, linked with its objects instead of the shared library.
add_executable(internal_tests
    api/fault_test.cpp
    api/mask_box_test.cpp
    api/mask_crop_test.cpp
    api/rotation_test.cpp
    blend/placement_test.cpp
    blend/pyramid_blend_test.cpp
    blend/rectangle_test.cpp
    blend/resize_test.cpp
    blend/workspace_test.cpp
    kernels/band_filter_test.cpp
    kernels/band_kernel_test.cpp
    kernels/fenced.cpp
    kernels/naive.cpp
    kernels/row_arith_test.cpp
    kernels/row_cases.cpp
    kernels/row_filter_test.cpp
    kernels/whole_plane_test.cpp
    pool/faults.cpp
    pool/pool_failure_test.cpp
    pool/thread_pool_test.cpp
    $<TARGET_OBJECTS:imageblend_core>)
# The library's headers come first: both trees have folders of the same names.
target_include_directories(internal_tests PRIVATE
    $<TARGET_PROPERTY:imageblend_core,INCLUDE_DIRECTORIES>
    $<TARGET_PROPERTY:log,INTERFACE_INCLUDE_DIRECTORIES>)
target_link_libraries(internal_tests PRIVATE
    imageblend_flags test_support GTest::gtest_main m)
# pool/faults.cpp takes these calls over.
foreach(function malloc calloc free pthread_create pthread_join pthread_mutex_init
                 pthread_cond_init)
    target_link_options(internal_tests PRIVATE -Wl,--wrap=${function})
endforeach()
gtest_discover_tests(internal_tests DISCOVERY_TIMEOUT 60)
