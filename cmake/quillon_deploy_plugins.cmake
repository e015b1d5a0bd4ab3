# SPDX-License-Identifier: MIT
# quillon_deploy_plugins(TARGET NAMES...): puts plug-ins where the program TARGET finds them: in the
# folder "plugin" beside it, in which __mCore_open looks when the program is started from there.
#
# A name is a target of quillon_add_plugin, or else the name of an installed plug-in. Each is copied
# whenever the program is linked, which happens again when a plug-in of this project changes.

# True for a target that links quillon::${library}; targets behind other libraries are not looked at.
function(_quillon_links variable target library)
    get_target_property(linked ${target} LINK_LIBRARIES)
    if("quillon::${library}" IN_LIST linked)
        set(${variable} TRUE PARENT_SCOPE)
    else()
        set(${variable} FALSE PARENT_SCOPE)
    endif()
endfunction()

function(quillon_deploy_plugins target)
    if(NOT TARGET ${target})
        message(FATAL_ERROR "quillon_deploy_plugins: no target \"${target}\"")
    endif()
    _quillon_links(host_is_static ${target} static)
    set(files "")
    foreach(name IN LISTS ARGN)
        set(installed "${quillon_PLUGIN_DIR}/${name}${CMAKE_SHARED_LIBRARY_SUFFIX}")
        if(TARGET ${name})
            # Two libraries in one process: each with its own modules, so the plug-in's calls would
            # reach a library that nothing was connected to.
            _quillon_links(plugin_is_shared ${name} quillon)
            if(host_is_static AND plugin_is_shared)
                message(FATAL_ERROR "quillon_deploy_plugins(${target} ${name}): the program links "
                    "quillon::static and the plug-in quillon::quillon, which would be two libraries "
                    "in one process; link quillon::quillon from both")
            endif()
            list(APPEND files "$<TARGET_FILE:${name}>")
            set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "$<TARGET_FILE:${name}>")
            add_dependencies(${target} ${name})
        elseif(EXISTS "${installed}")
            list(APPEND files "${installed}")
        else()
            message(FATAL_ERROR "quillon_deploy_plugins(${target}): \"${name}\" is no target, and "
                "${installed} does not exist")
        endif()
    endforeach()
    if(files)
        add_custom_command(TARGET ${target} POST_BUILD
            COMMAND ${CMAKE_COMMAND} -E make_directory "$<TARGET_FILE_DIR:${target}>/plugin"
            COMMAND ${CMAKE_COMMAND} -E copy_if_different ${files} "$<TARGET_FILE_DIR:${target}>/plugin"
            VERBATIM)
    endif()
endfunction()
