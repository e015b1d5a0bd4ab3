#include "pictures.h"

#include "command.h"
#include "plugin_folder.h"
#include "plugins/contracts/pictures.h"
#include "quillon/appearance/bitmap.h"
#include "quillon/core/modules.h"

namespace fs = std::filesystem;

namespace tool {
namespace {

[[noreturn]] void fail(const std::string& what) {
    const auto pictures = quillon::contract<quillon::Pictures>(__mGraphics_instance());
    const std::string reason = pictures ? pictures->last_error() : "";
    throw Failure(reason.empty() ? what + "; the graphics plug-in says no reason" : reason);
}

} // namespace

void open_graphics() {
    const fs::path folder = default_plugin_folder();
    // It starts at once, where a renderer first opens the driver.
    quillon::choose_plugin("GRAPHICS", "image");
    open_plugins(folder);
    if (__mGraphics_instance()->interface == nullptr)
        throw Failure("no plug-in in '" + folder.string() +
                      "' serves GRAPHICS; 'quillon plugins' says why");
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
