# SPDX-License-Identifier: MIT
# quillon_add_plugin(NAME SOURCES...): a plug-in that __mCore_open finds, as the module target NAME.
#
# The file is NAME with the platform's extension and no "lib" in front. Only what the sources mark
# for export is visible, every symbol must resolve at link time, and the file can be unloaded.
# A plug-in needs no library to be one; link quillon::quillon if it calls exports.

function(quillon_add_plugin name)
    if(NOT CMAKE_CXX_COMPILER_LOADED)
        message(FATAL_ERROR "quillon_add_plugin(${name}): a plug-in is C++; "
            "add CXX to the languages of project()")
    endif()
    include(CheckCXXCompilerFlag)
    check_cxx_compiler_flag(-fno-gnu-unique QUILLON_HAS_NO_GNU_UNIQUE)

    add_library(${name} MODULE ${ARGN})
    target_link_libraries(${name} PRIVATE quillon::headers)
    set_target_properties(${name} PROPERTIES
        PREFIX ""
        SUFFIX ${CMAKE_SHARED_LIBRARY_SUFFIX}
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    if(QUILLON_HAS_NO_GNU_UNIQUE)
        target_compile_options(${name} PRIVATE -fno-gnu-unique)
    endif()
    # A sanitizer's runtime is in the host, so its symbols are unresolved until the plug-in is loaded.
    if(NOT QUILLON_SANITIZE AND NOT WIN32)
        target_link_options(${name} PRIVATE LINKER:--no-undefined)
    endif()
endfunction()
