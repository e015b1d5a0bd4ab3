// SPDX-License-Identifier: MIT
#include <quillon/quillon.h>

#include <iostream>

int main() {
    __mCore_open(); // loads and connects the plug-ins of the folder "plugin"
    if (__mGraphics_instance()->interface == nullptr) {
        std::cerr << "no plug-in here reads pictures: start this beside its folder \"plugin\"\n";
        return 1;
    }
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t* pixels = nullptr;
    __cBitmap_load("lake.png", &width, &height, &pixels);
    __cBitmap_brighten(40, pixels, width * height);
    const bool is_saved = __cBitmap_save("brighter.jpg", width, height, pixels);
    delete[] pixels;
    return is_saved ? 0 : 1;
}
