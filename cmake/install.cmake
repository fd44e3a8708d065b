# SPDX-License-Identifier: Apache-2.0
# Installs what was built: the library with a CMake package and a pkg-config file, the command line,
# the Java class, the Python module. What was not built is left out, so every file of a target is
# optional.
# The components are library, development, tool, java and python.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/imageblend)

# The licence goes with each component, under the name of its Debian package.
function(install_licence component package)
    install(FILES ${PROJECT_SOURCE_DIR}/LICENSE COMPONENT ${component}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package})
endfunction()

# The exported libraries and their headers.
set(libraries imageblend)
set(headers include/imageblend.h)
if(TARGET imageblend_prepare)
    list(APPEND libraries imageblend_prepare)
    list(APPEND headers include/imageblend_prepare.h)
endif()
install(TARGETS ${libraries} EXPORT imageblend-targets OPTIONAL
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install_licence(library libimageblend)
install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install_licence(development libimageblend-dev)

install(EXPORT imageblend-targets NAMESPACE imageblend:: DESTINATION ${cmake_dir}
        COMPONENT development)
configure_package_config_file(cmake/imageblend-config.cmake.in
    ${PROJECT_BINARY_DIR}/imageblend-config.cmake INSTALL_DESTINATION ${cmake_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/imageblend-config-version.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/imageblend-config.cmake
              ${PROJECT_BINARY_DIR}/imageblend-config-version.cmake
        DESTINATION ${cmake_dir} COMPONENT development)

# The prefix is relative to the file itself, so that the installed tree can be moved.
file(RELATIVE_PATH pc_to_prefix
     ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pc_to_prefix "${pc_to_prefix}")
set(pc_libs -limageblend)
if(NOT BUILD_SHARED_LIBS)
    set(pc_libs "-limageblend -lm -pthread")
endif()
set(pc_files imageblend)
if(TARGET imageblend_prepare)
    list(APPEND pc_files imageblend_prepare)
endif()
foreach(name ${pc_files})
    configure_file(cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
            DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()

if(TARGET imageblend_tool)
    install(TARGETS imageblend_tool OPTIONAL
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
    install(FILES docs/imageblend.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
    install(FILES tools/completion/imageblend.bash RENAME imageblend COMPONENT tool
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install_licence(tool imageblend)
endif()
if(TARGET imageblend_jni)
    install(TARGETS imageblend_jni OPTIONAL
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT java)
endif()
if(TARGET imageblend_java)
    get_target_property(jar imageblend_java JAR_FILE)
    install(FILES ${jar} DESTINATION ${CMAKE_INSTALL_DATADIR}/java COMPONENT java OPTIONAL)
    install_licence(java libimageblend-java)
endif()
# The module finds the library beside itself. Debian's Python looks into this folder of /usr; of
# another prefix PYTHONPATH names it.
set(IMAGEBLEND_PYTHON_DIR lib/python3/dist-packages CACHE STRING "Where the Python module goes")
mark_as_advanced(IMAGEBLEND_PYTHON_DIR)
if(TARGET imageblend_python)
    install(TARGETS imageblend_python OPTIONAL
            LIBRARY DESTINATION ${IMAGEBLEND_PYTHON_DIR} COMPONENT python)
    install(FILES $<TARGET_FILE_DIR:imageblend_python>/imageblend.py OPTIONAL
            DESTINATION ${IMAGEBLEND_PYTHON_DIR} COMPONENT python)
    install_licence(python python3-imageblend)
endif()
