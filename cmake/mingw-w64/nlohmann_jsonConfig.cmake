# SPDX-License-Identifier: MIT
# The toolchain file has made its headers known.
if(NOT EXISTS /usr/include/nlohmann)
    set(nlohmann_json_FOUND OFF)
elseif(NOT TARGET nlohmann_json::nlohmann_json)
    add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
endif()
