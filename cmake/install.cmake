# SPDX-License-Identifier: MIT
# What is installed, by component, and the package that finds it again: find_package(quillon), and
# three files for pkg-config. Paths are relative to these files, so that the tree can be moved.

include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/quillon)
set(plugin_folder ${CMAKE_INSTALL_LIBDIR}/quillon/plugin)

set(runtime COMPONENT runtime)
set(development COMPONENT development)

if("shared" IN_LIST QUILLON_LIBRARIES)
    install(TARGETS quillon EXPORT quillon_shared
        RUNTIME ${runtime}
        LIBRARY ${runtime} NAMELINK_COMPONENT development
        ARCHIVE ${development})
    install(EXPORT quillon_shared NAMESPACE quillon:: DESTINATION ${package_folder}
        FILE quillon-shared.cmake ${development})
endif()
if(quillon_runtime_libraries)
    install(FILES ${quillon_runtime_libraries} DESTINATION ${CMAKE_INSTALL_BINDIR} ${runtime})
endif()
# Where gdb looks for what it loads with the library; Visual Studio's are added to a project.
if("shared" IN_LIST QUILLON_LIBRARIES AND NOT WIN32)
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debug/quillon-gdb.py
        DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_FULL_LIBDIR}
        RENAME $<TARGET_FILE_NAME:quillon>-gdb.py ${development})
endif()
install(FILES ${PROJECT_SOURCE_DIR}/cmake/debug/quillon.natvis
    DESTINATION ${CMAKE_INSTALL_DATADIR}/quillon ${development})
if("static" IN_LIST QUILLON_LIBRARIES)
    install(TARGETS quillon_static EXPORT quillon_static ARCHIVE ${development})
    install(EXPORT quillon_static NAMESPACE quillon:: DESTINATION ${package_folder}
        FILE quillon-static.cmake ${development})
endif()
install(TARGETS quillon_headers EXPORT quillon_headers FILE_SET HEADERS ${development})
install(EXPORT quillon_headers NAMESPACE quillon:: DESTINATION ${package_folder}
    FILE quillon-headers.cmake ${development})

get_property(plugins GLOBAL PROPERTY QUILLON_REFERENCE_PLUGINS)
if(plugins)
    install(TARGETS ${plugins} LIBRARY DESTINATION ${plugin_folder} COMPONENT plugins)
endif()
if(QUILLON_TOOLS)
    install(TARGETS quillon_tool RUNTIME COMPONENT tools)
    install(TARGETS inspector
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/quillon/inspect COMPONENT tools)
endif()
if(TARGET tool_documents)
    install(FILES ${PROJECT_BINARY_DIR}/tools/quillon/quillon.1.gz
        DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    install(FILES ${PROJECT_BINARY_DIR}/tools/quillon/quillon.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME quillon
        COMPONENT tools)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    ${PROJECT_SOURCE_DIR}/LICENSE
    DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/quillon-config.cmake.in
    ${PROJECT_BINARY_DIR}/quillon-config.cmake
    INSTALL_DESTINATION ${package_folder}
    PATH_VARS plugin_folder
    NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/quillon-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/quillon-config.cmake
    ${PROJECT_BINARY_DIR}/quillon-config-version.cmake
    ${PROJECT_SOURCE_DIR}/cmake/quillon_add_plugin.cmake
    ${PROJECT_SOURCE_DIR}/cmake/quillon_deploy_plugins.cmake
    DESTINATION ${package_folder} ${development})

# A folder as the .pc files name it: from their own place, or whole where it is outside the prefix.
function(pkgconfig_folder variable folder)
    if(IS_ABSOLUTE ${folder})
        set(${variable} ${folder} PARENT_SCOPE)
    else()
        set(${variable} "\${prefix}/${folder}" PARENT_SCOPE)
    endif()
endfunction()

if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    set(pc_prefix ${CMAKE_INSTALL_PREFIX})
else()
    cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
        BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig OUTPUT_VARIABLE up)
    set(pc_prefix "\${pcfiledir}/${up}")
endif()
pkgconfig_folder(pc_libdir ${CMAKE_INSTALL_LIBDIR})
pkgconfig_folder(pc_includedir ${CMAKE_INSTALL_INCLUDEDIR})

# NAME, what it is for, the flags to compile with beside the headers', the flags to link with
function(install_pkgconfig name purpose cflags libs)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/quillon.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

if("shared" IN_LIST QUILLON_LIBRARIES)
    install_pkgconfig(quillon "${PROJECT_DESCRIPTION}" "" "-L\${libdir} -lquillon")
endif()
if("static" IN_LIST QUILLON_LIBRARIES)
    install_pkgconfig(quillon-static "${PROJECT_DESCRIPTION}, linked statically" "-DQUILLON_STATIC"
        "\${libdir}/${CMAKE_STATIC_LIBRARY_PREFIX}quillon${CMAKE_STATIC_LIBRARY_SUFFIX} -lstdc++ -lm")
endif()
set(hide "-fPIC -fvisibility=hidden -fvisibility-inlines-hidden")
if(QUILLON_HAS_NO_GNU_UNIQUE)
    string(APPEND hide " -fno-gnu-unique")
endif()
install_pkgconfig(quillon-plugin "What a plug-in of quillon is compiled and linked with" "${hide}"
    "-shared -Wl,--no-undefined")
