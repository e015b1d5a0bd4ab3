# SPDX-License-Identifier: MIT
# cmake -DFILE=... -DFOLDERS=... -DTO=... -DOBJDUMP=... -P copy_dlls.cmake: copies the DLLs that FILE needs, and those
# that they need, from FOLDERS to the folder TO. What is in none of the folders is the system's.
#
# Not by file(GET_RUNTIME_DEPENDENCIES): it writes the names in small letters, which here are others.
cmake_minimum_required(VERSION 3.25)
set(files ${FILE})
set(seen "")
while(files)
    list(POP_FRONT files file)
    execute_process(COMMAND ${OBJDUMP} -p ${file} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "DLL Name: [^\n]+" lines "${text}")
    foreach(line IN LISTS lines)
        string(REPLACE "DLL Name: " "" name ${line})
        unset(found CACHE)
        find_file(found ${name} PATHS ${FOLDERS} NO_DEFAULT_PATH)
        if(found AND NOT found IN_LIST seen)
            list(APPEND seen ${found})
            list(APPEND files ${found})
        endif()
    endforeach()
endwhile()
if(seen)
    file(COPY ${seen} DESTINATION ${TO})
endif()
