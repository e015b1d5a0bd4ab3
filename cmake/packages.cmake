# SPDX-License-Identifier: MIT
# Debian's packages, one for each component: scripts/check-packages makes, checks and uses them.

find_program(QUILLON_GZIP gzip)
if(NOT QUILLON_GZIP)
    return() # every Debian has it
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "the quillon authors")
set(CPACK_PACKAGE_CONTACT "the quillon authors <quillon@example.org>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_COMPONENTS_ALL "")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each has its own

configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in ${PROJECT_BINARY_DIR}/changelog @ONLY)
execute_process(COMMAND ${QUILLON_GZIP} -9nf ${PROJECT_BINARY_DIR}/changelog COMMAND_ERROR_IS_FATAL ANY)

# Names the package of a component and what it says of itself, a line an argument. The first line is
# the summary.
macro(quillon_package component name section)
    string(TOUPPER ${component} key)
    set(lines ${ARGN}) # in a macro, ARGN is no variable
    list(JOIN lines "\n" description)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section})
    set(CPACK_DEBIAN_${key}_DESCRIPTION "${description}")
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright ${PROJECT_BINARY_DIR}/changelog.gz
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component} EXCLUDE_FROM_ALL)
    if(EXISTS ${PROJECT_SOURCE_DIR}/cmake/debian/${name}.overrides)
        install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/${name}.overrides RENAME ${name}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
            COMPONENT ${component} EXCLUDE_FROM_ALL)
    endif()
endmacro()

set(library_package libquillon${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
set(needs_library "${library_package} (= ${PROJECT_VERSION})")

quillon_package(runtime ${library_package} libs
    "base library of a small real-time 3D engine"
    "The shared library: it finds, loads and connects plug-ins, and holds"
    "containers, a message router, math, colours and bitmaps, input bindings,"
    "draw data and files.")
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/shlibs
    CONTENT "libquillon ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR} ${needs_library}\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/shlibs ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
quillon_package(development libquillon-dev libdevel
    "base library of a small real-time 3D engine (development files)"
    "Headers, the static library, and what CMake and pkg-config find them by.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ${needs_library})
if(plugins)
    quillon_package(plugins quillon-plugins libs
        "reference plug-ins of the quillon library"
        "A renderer, sound, network, input devices, a clock, PNG and JPEG pictures.")
    # A driver, and the font of its texts.
    set(CPACK_DEBIAN_PLUGINS_PACKAGE_RECOMMENDS "fonts-dejavu-core, libegl1, libgl1-mesa-dri")
endif()
if(QUILLON_TOOLS)
    quillon_package(tools quillon-tools utils
        "command of the quillon library"
        "Examines plug-ins, shows input devices, converts pictures, paints palettes.")
    set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS ${needs_library})
    set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS quillon-plugins)
endif()
quillon_package(documents quillon-doc doc
    "base library of a small real-time 3D engine (documents)"
    "Pages on its use, and the examples, a game among them.")
set(CPACK_DEBIAN_DOCUMENTS_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTS_PACKAGE_SHLIBDEPS OFF)

include(CPack)
