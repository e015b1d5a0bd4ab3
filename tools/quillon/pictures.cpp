// SPDX-License-Identifier: MIT
#include "pictures.h"

#include "command.h"
#include "platform.h"
#include "plugin_folder.h"
#include "plugins/contracts/pictures.h"
#include "quillon/appearance/bitmap.h"
#include "quillon/containers/name_hash.h"
#include "quillon/core/modules.h"

#include <CLI/CLI.hpp>

namespace fs = std::filesystem;

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& what) {
    const auto pictures = quillon::contract<quillon::Pictures>(__mGraphics_instance());
    const std::string reason = pictures ? pictures->last_error() : "";
    throw Failure(reason.empty() ? what + "; the graphics plug-in says no reason" : reason);
}

// Why the name of a picture to write is refused; empty if it is fit.
std::string ending_fault(const std::string& file) {
    const std::string ending = platform::to_path(file).extension().string();
    for (const char* known : {".png", ".jpg", ".jpeg"})
        if (quillon::equal_ignoring_case(known, ending))
            return "";
    return "the picture '" + file + "' ends in none of .png, .jpg and .jpeg";
}

} // namespace

void add_plugin_folder(CLI::App& app, std::string& folder) {
    app.add_option("--plugins", folder,
                   "The folder of the plug-ins; without it the picture plug-in of this tool");
}

CLI::Option* add_output(CLI::App& app, std::string& file, const std::string& help) {
    return app
        .add_option("OUT", file, help + ": a PNG if it ends in .png, a JPEG for .jpg or .jpeg")
        ->check(ending_fault);
}

void open_graphics(const std::string& folder) {
    // It starts at once, where a renderer first opens the driver.
    quillon::choose_plugin("GRAPHICS", "image");
    if (folder.empty())
        open_own_plugin("image");
    else
        open_plugins(platform::to_path(folder));
    if (__mGraphics_instance()->interface == nullptr)
        throw Failure(folder.empty()
                          ? "the picture plug-in of this tool does not load; name a folder with "
                            "--plugins, or install quillon again"
                          : "no plug-in in '" + folder + "' serves GRAPHICS; 'quillon plugins " +
                                folder + "' says why");
}

Picture load_picture(const std::string& file) {
    Picture picture;
    std::uint8_t* pixels = nullptr;
    __cBitmap_load(file, &picture.width, &picture.height, &pixels);
    picture.pixels.reset(pixels);
    if (pixels == nullptr)
        fail("cannot load '" + file + "'");
    return picture;
}

void save_picture(const std::string& file, const Picture& picture) {
    if (!__cBitmap_save(file, picture.width, picture.height, picture.pixels.get()))
        fail("cannot save '" + file + "'");
}

} // namespace tool
