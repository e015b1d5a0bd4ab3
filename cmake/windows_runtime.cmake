# SPDX-License-Identifier: MIT
# The compiler's DLLs, beside the programs: strings and lists made by the host are freed by plug-ins, so
# that all need the same ones.
foreach(name IN ITEMS libgcc_s_seh-1.dll libstdc++-6.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
        OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${file}") # the compiler does not know it
        find_file(QUILLON_${name} ${name} PATH_SUFFIXES lib bin)
        set(file "${QUILLON_${name}}")
    endif()
    if(NOT file)
        message(FATAL_ERROR "${name} is not found; it belongs to the compiler ${CMAKE_CXX_COMPILER}")
    endif()
    file(COPY ${file} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} FOLLOW_SYMLINK_CHAIN)
    list(APPEND quillon_runtime_libraries ${file})
endforeach()
