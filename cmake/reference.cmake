# SPDX-License-Identifier: MIT
# The target `docs`: the reference of the public headers and the pages, as HTML in the build tree's
# folder `reference`. A public name without a comment, or a dead link, fails it.

find_program(QUILLON_DOXYGEN doxygen)
if(NOT QUILLON_DOXYGEN)
    add_custom_target(docs
        COMMAND ${CMAKE_COMMAND} -E echo "docs: doxygen is missing; install it and configure again"
        COMMAND ${CMAKE_COMMAND} -E false)
    return()
endif()

set(reference_folder ${PROJECT_BINARY_DIR}/reference)
get_target_property(library_headers quillon_headers HEADER_SET)
file(GLOB contracts CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/plugins/contracts/*.h)
file(GLOB pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
list(JOIN library_headers " " reference_headers)
list(JOIN contracts " " reference_contracts)
list(JOIN pages " " reference_pages)
set(reference_inputs "${reference_headers} ${reference_contracts} ${reference_pages}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/reference/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)

add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -E make_directory ${reference_folder}
    COMMAND ${QUILLON_DOXYGEN} ${PROJECT_BINARY_DIR}/Doxyfile
    COMMENT "Reference: ${reference_folder}/index.html"
    VERBATIM)
