# SPDX-License-Identifier: Apache-2.0
# libimageblend.a: one object that defines the four functions and nothing else for others to see, so
# that no inner name meets one of the program's.
set(whole ${CMAKE_CURRENT_BINARY_DIR}/whole.o)
set(localised ${CMAKE_CURRENT_BINARY_DIR}/imageblend.o)
set(parts $<TARGET_OBJECTS:imageblend_core>)
if(NOT ANDROID)
    list(APPEND parts $<TARGET_OBJECTS:imageblend_liblog>)
endif()
# Machine code, whatever the program is built with: objcopy sees no symbols in a compiler's own code.
set_target_properties(imageblend_core PROPERTIES INTERPROCEDURAL_OPTIMIZATION OFF)
add_custom_command(OUTPUT ${localised}
    COMMAND ${CMAKE_LINKER} -r -o ${whole} ${parts}
    COMMAND ${CMAKE_OBJCOPY} --keep-global-symbols=${CMAKE_CURRENT_SOURCE_DIR}/imageblend.symbols
            ${whole} ${localised}
    DEPENDS ${parts} imageblend_core imageblend_liblog imageblend.symbols
    COMMENT "Linking the library's objects into one" COMMAND_EXPAND_LISTS VERBATIM)
add_library(imageblend STATIC ${localised})
target_link_libraries(imageblend PRIVATE m)
if(ANDROID)
    target_link_libraries(imageblend PRIVATE log)
else()
    set(THREADS_PREFER_PTHREAD_FLAG ON)
    find_package(Threads REQUIRED)
    target_link_libraries(imageblend PRIVATE Threads::Threads)
endif()
if(CMAKE_LIBRARY_OUTPUT_DIRECTORY)
    set_target_properties(imageblend PROPERTIES
        ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
endif()
