# SPDX-License-Identifier: MIT
# The toolchain file has made its headers known.
if(NOT EXISTS /usr/include/CLI)
    set(CLI11_FOUND OFF)
elseif(NOT TARGET CLI11::CLI11)
    add_library(CLI11::CLI11 INTERFACE IMPORTED)
endif()
