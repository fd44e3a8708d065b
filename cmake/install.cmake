# Installs the library with a CMake package and a pkg-config file, and what was built around it.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/imageblend)

install(TARGETS imageblend EXPORT imageblend-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/imageblend.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT imageblend-targets NAMESPACE imageblend:: DESTINATION ${cmake_dir})
configure_package_config_file(cmake/imageblend-config.cmake.in
    ${PROJECT_BINARY_DIR}/imageblend-config.cmake INSTALL_DESTINATION ${cmake_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/imageblend-config-version.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/imageblend-config.cmake
              ${PROJECT_BINARY_DIR}/imageblend-config-version.cmake
        DESTINATION ${cmake_dir})

# Relative to the file itself, so that the installed tree can be moved.
file(RELATIVE_PATH pc_to_prefix
     ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
configure_file(cmake/imageblend.pc.in ${PROJECT_BINARY_DIR}/imageblend.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/imageblend.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET imageblend_tool)
    install(TARGETS imageblend_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(FILES docs/imageblend.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES tools/completion/imageblend.bash RENAME imageblend
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endif()
if(TARGET imageblend_jni)
    install(TARGETS imageblend_jni LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
if(TARGET imageblend_java)
    install_jar(imageblend_java DESTINATION ${CMAKE_INSTALL_DATADIR}/java)
endif()
