# Tests of the library's inner functions, linked with its objects instead of the shared library.
add_executable(internal_tests
    api/fault_test.cpp
    api/mask_test.cpp
    api/overlap_test.cpp
    api/plan_test.cpp
    api/rotated_icon_test.cpp
    blend/region_test.cpp
    blend/pyramid_blend_test.cpp
    blend/resample_test.cpp
    blend/workspace_test.cpp
    hashes/whole_calls.cpp
    hashes/whole_calls_test.cpp
    kernels/band_filter_test.cpp
    kernels/band_kernel_test.cpp
    kernels/naive.cpp
    kernels/row_test.cpp
    kernels/whole_plane_test.cpp
    pool/faults.cpp
    pool/pool_failure_test.cpp
    pool/thread_pool_test.cpp
    $<TARGET_OBJECTS:imageblend_core>)
# The library's headers come first: both trees have folders of the same names.
target_include_directories(internal_tests PRIVATE
    $<TARGET_PROPERTY:imageblend_core,INCLUDE_DIRECTORIES>)
target_link_libraries(internal_tests PRIVATE
    imageblend_flags test_support imageblend_liblog GTest::gtest_main m)
wrap_engine_choices(internal_tests)
wrap_faults(internal_tests)
target_compile_definitions(internal_tests PRIVATE
    IMAGEBLEND_WHOLE_CALLS="${CMAKE_CURRENT_SOURCE_DIR}/hashes/whole_calls.txt")
gtest_discover_tests(internal_tests DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)

# Prints the table of whole calls; see scripts/make-hashes.sh.
add_executable(hash_calls hashes/hash_calls.cpp hashes/whole_calls.cpp)
set_target_properties(hash_calls PROPERTIES ENABLE_EXPORTS ON)
target_include_directories(hash_calls PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(hash_calls PRIVATE imageblend_flags test_support imageblend)
