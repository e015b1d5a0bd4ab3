# SPDX-License-Identifier: MIT
# Toolchain file: compiles the Windows side on Debian (package g++-mingw-w64-x86-64-posix).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/mingw-w64/wine)
# The second holds what scripts/windows-libraries builds.
get_filename_component(libraries ${CMAKE_CURRENT_LIST_DIR}/../build/windows-libraries/prefix ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${libraries})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/lib/pkgconfig)

# Debian's header-only libraries serve every processor, but all of /usr/include would hide the headers of
# Windows.
foreach(package IN ITEMS CLI11 nlohmann_json)
    set(${package}_DIR ${CMAKE_CURRENT_LIST_DIR}/mingw-w64 CACHE PATH "")
endforeach()
set(header_only ${CMAKE_BINARY_DIR}/header_only)
file(MAKE_DIRECTORY ${header_only})
foreach(folder IN ITEMS CLI nlohmann stb)
    file(CREATE_LINK /usr/include/${folder} ${header_only}/${folder} SYMBOLIC)
endforeach()
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${header_only})
