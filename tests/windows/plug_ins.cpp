// SPDX-License-Identifier: MIT
// plug_ins NAME...: opens the plug-ins of the folder "plugin" and tries of those named what differs
// on Windows: file names that no code page has in common, long jumps, numbers of errors. What they
// promise on every system `quillon check` tries. Prints what failed; the status is the number of
// failures.
#include "plugins/contracts/audio.h"
#include "plugins/contracts/graphics.h"
#include "plugins/contracts/network.h"
#include "quillon/quillon.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <winsock2.h>

using namespace quillon;

namespace {

int failures = 0;
const char* tried = "";

void expect(bool holds, const std::string& what) {
    if (holds)
        return;
    std::fprintf(stderr, "plug_ins: %s: %s\n", tried, what.c_str());
    ++failures;
}

using Bytes = std::vector<std::uint8_t>;

Bytes read_file(const wchar_t* name) {
    Bytes bytes(1 << 20);
    std::FILE* const stream = _wfopen(name, L"rb");
    bytes.resize(stream == nullptr ? 0 : std::fread(bytes.data(), 1, bytes.size(), stream));
    if (stream != nullptr)
        std::fclose(stream);
    return bytes;
}

void write_file(const wchar_t* name, const Bytes& bytes) {
    std::FILE* const stream = _wfopen(name, L"wb");
    std::fwrite(bytes.data(), 1, bytes.size(), stream);
    std::fclose(stream);
}

constexpr std::uint16_t WIDTH = 7;
constexpr std::uint16_t HEIGHT = 5;

template <typename Table>
bool is_loaded(const Table& table, const char* name) {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t* pixels = nullptr;
    table->load_bitmap(name, &width, &height, &pixels);
    const std::unique_ptr<std::uint8_t[]> owner(pixels);
    return width == WIDTH && height == HEIGHT;
}

template <typename Table>
void try_pictures(const Table& table) {
    const auto refuses = [&table](const char* name, const char* reason) {
        expect(!is_loaded(table, name) && std::strstr(table->last_error(), reason) != nullptr,
               std::string(name) + " is loaded, or refused so: " + table->last_error());
    };
    Bytes pixels(4 * WIDTH * HEIGHT, 200);
    for (const char* name : {"\u20ac \U0001f600.png", "\u20ac.J\u00e4.jpg"})
        expect(table->save_bitmap(name, WIDTH, HEIGHT, pixels.data()) && is_loaded(table, name),
               table->last_error());
    Bytes png = read_file(L"\u20ac \U0001f600.png");
    expect(png.size() > 40, "the PNG has another name");
    expect(read_file(L"\u20ac.J\u00e4.jpg").size() > 40, "the JPEG has another name");
    // libpng and libjpeg leave these by a long jump.
    png.resize(png.size() * 3 / 4);
    write_file(L"cut.png", png);
    write_file(L"cut.jpg", {0xff, 0xd8, 0xff, 0xe0, 0, 16});
    refuses("cut.png", "cut short");
    refuses("cut.jpg", "JPEG:");
    refuses("\xe4.png", "\xe4.png");
}

void try_image() {
    const auto table = contract<Pictures>(__mGraphics_instance());
    if (!table)
        return expect(false, table.reason);
    try_pictures(table);
}

void try_graphics() {
    const auto table = contract<Graphics>(__mGraphics_instance());
    if (!table)
        return expect(false, table.reason);
    try_pictures(table);
    for (const bool offscreen : {true, false}) {
        bool succeeds = table->open({.title = "\u20ac", .width = 320, .offscreen = offscreen});
        expect(succeeds, table->last_error());
        succeeds = table->set_font("\u20ac.ttf");
        expect(succeeds, table->last_error());
        table->close();
    }
}

// 600 silent frames of 16-bit mono at 22050 frames per second.
Bytes wav() {
    Bytes file = {'R', 'I', 'F', 'F', 0xd4, 4, 0,   0,   'W', 'A',  'V',  'E', 'f', 'm',  't',
                  ' ', 16,  0,   0,   0,    1, 0,   1,   0,   0x22, 0x56, 0,   0,   0x44, 0xac,
                  0,   0,   2,   0,   16,   0, 'd', 'a', 't', 'a',  0xb0, 4,   0,   0};
    file.resize(file.size() + 1200);
    return file;
}

void try_audio() {
    const auto table = contract<Audio>(__mAudio_instance());
    if (!table)
        return expect(false, table.reason);
    // Before anything has opened the device.
    expect(table->load_sound("\xe4.wav") == 0 && *table->last_error() != '\0',
           "a name that is not UTF-8 is loaded");
    write_file(L"\u266b.wav", wav());
    const bool succeeds = table->load_sound("\u266b.wav") != 0;
    expect(succeeds, table->last_error());
}

void try_network() {
    const auto table = contract<Network>(__mNetwork_instance());
    if (!table)
        return expect(false, table.reason);
    const SOCKET taken = socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    int size = sizeof address;
    bind(taken, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(taken, reinterpret_cast<sockaddr*>(&address), &size);
    expect(!table->host(ntohs(address.sin_port), 2, 77) &&
               std::strstr(table->last_error(), "is in use; choose another") != nullptr,
           std::string("a port that is taken is taken again, or: ") + table->last_error());
    closesocket(taken);
}

constexpr struct {
    const char* name;
    const char* service;
    void (*run)();
} TRIALS[] = {{"image", "GRAPHICS", try_image},
              {"graphics-gl", "GRAPHICS", try_graphics},
              {"audio-openal", "AUDIO", try_audio},
              {"network-enet", "NET", try_network}};

} // namespace

int main(int count, char** names) {
    render_audio_offline();
    for (int i = 1; i < count; ++i)
        for (const auto& trial : TRIALS)
            if (std::string_view(names[i]) == trial.name)
                choose_plugin(trial.service, trial.name);
    __mCore_open();
    for (int i = 1; i < count; ++i)
        for (const auto& trial : TRIALS)
            if (std::string_view(names[i]) == trial.name) {
                tried = trial.name;
                trial.run();
            }
    return failures;
}
