// SPDX-License-Identifier: MIT
// The folders in which the tool looks for plug-ins, and the opening of one.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

// The plug-ins to use when the user names none: "plugin" below the current directory, else the
// folder that was installed or built together with the tool.
//
// Throws Failure if there is none.
std::filesystem::path default_plugin_folder();

// The folder of the tool's own plug-in (see tools/inspector).
std::filesystem::path inspector_folder();

// Throws Failure for a folder that the library cannot list.
void expect_listable(const std::filesystem::path& folder);

// Names the plug-ins that are to serve modules, each as MODULE=NAME, before any are opened.
void choose_plugins(const std::vector<std::string>& choices);

// Opens the plug-ins of `folder` as a host does, once a process; returns the file names that the
// library refused. What else was written on the standard output goes to the error stream.
//
// For a folder other than "plugin" below the current directory, `initialize` and connect entry
// points run in a current directory that is empty and stays so, and __mCore_open finds no plug-ins
// but these.
// Throws Failure for a folder that the library cannot list.
std::vector<std::string> open_plugins(const std::filesystem::path& folder);

// Opens one of the plug-ins that came with the tool, by the name of its file without ending, and no
// other.
void open_own_plugin(const std::string& name);

} // namespace tool
