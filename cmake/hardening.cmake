# How the project's shared libraries are made safe and reproducible.

option(IMAGEBLEND_SEPARATE_SYMBOLS "Move debug symbols into files of their own" OFF)

if(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
    target_compile_options(imageblend_flags INTERFACE -mbranch-protection=standard)
endif()
if(IMAGEBLEND_SEPARATE_SYMBOLS)
    # The build id covers the symbols, so these must not name the folder of the build.
    target_compile_options(imageblend_flags INTERFACE
        -g -ffile-prefix-map=${PROJECT_BINARY_DIR}=build -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
endif()

# Pages of 16 KB serve systems with pages of 4 KB too.
function(harden_shared_library target)
    target_link_options(${target} PRIVATE
        -Wl,-z,max-page-size=16384 -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack
        -Wl,--as-needed -Wl,--build-id=sha1
        # A sanitizer's own symbols come from the executable.
        $<$<NOT:$<BOOL:${IMAGEBLEND_SANITIZER_BUILD}>>:-Wl,--no-undefined>)
    if(ANDROID)
        # The system finds an app's libraries by itself.
        set_target_properties(${target} PROPERTIES SKIP_BUILD_RPATH ON)
    else()
        set_target_properties(${target} PROPERTIES
            BUILD_RPATH_USE_ORIGIN ON INSTALL_RPATH "$ORIGIN")
    endif()
    if(IMAGEBLEND_SEPARATE_SYMBOLS)
        set(name $<TARGET_FILE_NAME:${target}>)
        add_custom_command(TARGET ${target} POST_BUILD VERBATIM
            COMMAND ${CMAKE_OBJCOPY} --only-keep-debug ${name} ${name}.debug
            COMMAND ${CMAKE_STRIP} --strip-unneeded ${name}
            COMMAND ${CMAKE_OBJCOPY} --add-gnu-debuglink=${name}.debug ${name}
            WORKING_DIRECTORY $<TARGET_FILE_DIR:${target}>)
    endif()
endfunction()
