// SPDX-License-Identifier: MIT
#include <quillon/quillon.h>

#include <iostream>

int main() {
    __mCore_open();
    for (std::uint32_t i = 0; i < __mCore_get_plugin_count(); ++i)
        std::cout << i << ": " << __mCore_get_plugin_name(static_cast<std::int16_t>(i)) << "\n";

    if (__mSystem_instance()->interface == nullptr) {
        std::cerr << "first_host: no plug-in in the folder 'plugin' serves SYSTEM\n";
        return 1;
    }
    __mSystem_instance()->pause(0.25);
    return 0;
}
