// SPDX-License-Identifier: MIT
// Plug-ins examined in processes of their own.
#pragma once

#include "plugin_report.h"

namespace tool {

// What a folder of plug-ins comes to in a host.
struct Examination {
    PluginReport report;
    std::string printed; // what the plug-ins wrote
};

// Examines each file alone, and then all that came through it together. A file that ends its
// process or does not come back within `limit` seconds is refused, and left out of the folder.
//
// Throws Failure for a folder that cannot be listed.
Examination examine(const std::filesystem::path& folder, const std::vector<std::string>& choices,
                    double limit);

// Why a plug-in's file is refused; empty if it is fit for a host.
struct FileVerdict {
    std::string reason;
    bool is_dangerous = false; // to load it would take the host along
};

FileVerdict examine_alone(const std::filesystem::path& file, double limit);

// The work of children: the file named first; the folder named first, with choices after it.
void examine_file(const std::vector<std::string>& arguments);
void examine_folder(const std::vector<std::string>& arguments);

} // namespace tool
