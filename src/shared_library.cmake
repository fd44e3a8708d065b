# SPDX-License-Identifier: Apache-2.0
# libimageblend.so: exports the four functions.
add_library(imageblend SHARED $<TARGET_OBJECTS:imageblend_core>)
target_link_libraries(imageblend PRIVATE imageblend_liblog m)
target_link_options(imageblend PRIVATE
    -Wl,--version-script=${CMAKE_CURRENT_SOURCE_DIR}/imageblend.map
    -Wl,--gc-sections)
# Nothing runs at load or unload. On Arm the start files may lack branch protection, which a library
# keeps only if all of its parts have it.
if(NOT ANDROID AND NOT IMAGEBLEND_SANITIZER_BUILD)
    target_link_options(imageblend PRIVATE -nostartfiles)
endif()
set_target_properties(imageblend PROPERTIES
    LINK_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/imageblend.map)
harden_shared_library(imageblend)
