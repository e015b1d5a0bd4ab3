// SPDX-License-Identifier: MIT
// plug_ins NAME...: opens the plug-ins of the folder "plugin" and tries those named, each with what
// differs on Windows. Prints what failed; the status is the number of failures.
#include "plugins/contracts/audio.h"
#include "plugins/contracts/graphics.h"
#include "plugins/contracts/input.h"
#include "plugins/contracts/network.h"
#include "plugins/contracts/system.h"
#include "quillon/quillon.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

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

// Reads the reason after the call, whose result is the first argument.
template <typename Table>
void expect_success(bool succeeds, const Table& table) {
    expect(succeeds, table->last_error());
}

using Bytes = std::vector<std::uint8_t>;

Bytes read_file(const wchar_t* name) {
    std::FILE* const stream = _wfopen(name, L"rb");
    if (stream == nullptr)
        return {};
    Bytes bytes(1 << 20);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), stream));
    std::fclose(stream);
    return bytes;
}

bool write_file(const wchar_t* name, const Bytes& bytes) {
    std::FILE* const stream = _wfopen(name, L"wb");
    return stream != nullptr &&
           std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size() &&
           std::fclose(stream) == 0;
}

constexpr std::uint16_t WIDTH = 7;
constexpr std::uint16_t HEIGHT = 5;

template <typename Table>
Bytes load(const Table& table, const char* name) {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t* pixels = nullptr;
    table->load_bitmap(name, &width, &height, &pixels);
    const std::unique_ptr<std::uint8_t[]> owner(pixels);
    return width == WIDTH && height == HEIGHT ? Bytes(pixels, pixels + 4 * WIDTH * HEIGHT)
                                              : Bytes();
}

template <typename Table>
void try_pictures(const Table& table) {
    Bytes pixels;
    for (int i = 0; i < WIDTH * HEIGHT; ++i)
        pixels.insert(pixels.end(), {200, 100, static_cast<std::uint8_t>(20 + i), 255});
    constexpr const char* PNG = "\u20ac \U0001f600.png";
    constexpr const char* JPEG = "\u20ac.J\u00e4.jpg";
    for (const char* name : {PNG, JPEG})
        expect(table->save_bitmap(name, WIDTH, HEIGHT, pixels.data()),
               std::string("not saved: ") + table->last_error());
    Bytes stored = read_file(L"\u20ac \U0001f600.png");
    expect(stored.size() > 8 && std::memcmp(stored.data(), "\x89PNG\r\n\x1a\n", 8) == 0,
           "no PNG under its name");
    expect(read_file(L"\u20ac.J\u00e4.jpg").size() > 100, "no JPEG under its name");
    expect(load(table, PNG) == pixels,
           std::string("another PNG is loaded: ") + table->last_error());
    const Bytes lossy = load(table, JPEG);
    expect(std::ranges::equal(lossy, pixels, [](int a, int b) { return std::abs(a - b) < 9; }),
           std::string("another JPEG is loaded: ") + table->last_error());

    // libpng and libjpeg leave these by a long jump.
    stored.resize(stored.size() * 3 / 4);
    expect(write_file(L"cut.png", stored) && load(table, "cut.png").empty() &&
               std::strstr(table->last_error(), "cut short") != nullptr,
           std::string("a PNG that is cut short is loaded: ") + table->last_error());
    expect(write_file(L"cut.jpg", {0xff, 0xd8, 0xff, 0xe0, 0, 16}) &&
               load(table, "cut.jpg").empty() &&
               std::strstr(table->last_error(), "JPEG:") != nullptr,
           std::string("a JPEG that is cut short is loaded: ") + table->last_error());
    expect(!table->save_bitmap("\xe4.png", WIDTH, HEIGHT, pixels.data()) &&
               *table->last_error() != '\0',
           "a name that is not UTF-8 is saved");
}

void try_image() {
    if (const auto table = contract<Pictures>(__mGraphics_instance()))
        try_pictures(table);
    else
        expect(false, table.reason);
}

// A rectangle over the left two columns.
void try_frame(const Graphics& table) {
    const bool is_drawn =
        table.begin_frame({}) &&
        table.draw_overlay({.width = 2, .height = HEIGHT, .color = {1.0F, 0.5F, 0.0F, 1.0F}}) &&
        table.end_frame();
    Bytes frame(4 * WIDTH * HEIGHT);
    expect_success(is_drawn && table.read_frame(frame.data(), WIDTH, HEIGHT), &table);
    for (const int x : {1, 2}) {
        const std::uint8_t* const pixel = &frame[4 * (3 * WIDTH + x)];
        const bool is_covered = pixel[0] > 250 && std::abs(pixel[1] - 128) < 3 && pixel[2] < 3;
        expect(is_covered == (x == 1) && (x == 1 || pixel[0] < 3),
               "the frame shows something else");
    }
}

void try_graphics() {
    const auto table = contract<Graphics>(__mGraphics_instance());
    if (!table)
        return expect(false, table.reason);
    try_pictures(table);
    for (const bool offscreen : {true, false}) {
        if (!table->open({.title = "\u20ac",
                          .width = WIDTH,
                          .height = HEIGHT,
                          .samples = 0,
                          .offscreen = offscreen,
                          .wait_for_display = false}))
            return expect_success(false, table);
        Surface surface;
        table->get_surface(surface);
        std::printf("plug_ins: drawing %s by %s\n", offscreen ? "offscreen" : "in a window",
                    surface.renderer);
        // A system may have a least size for windows.
        expect_success(table->resize(WIDTH, HEIGHT), table);
        table->get_surface(surface);
        if (surface.width == WIDTH && surface.height == HEIGHT)
            try_frame(*table);
        else
            expect(!offscreen, "another size than was asked for");
        expect_success(table->set_font("\u20ac.ttf"), table);
        table->close();
    }
}

void try_clock() {
    const auto table = contract<System>(__mSystem_instance());
    if (!table)
        return expect(false, table.reason);
    const double before = table->get_time();
    table->pause(0.05);
    const double passed = table->get_time() - before;
    expect(passed >= 0.049 && passed < 5, "a pause of 0.05 s takes " + std::to_string(passed));
}

std::uint64_t energy(const Audio& table, int channel) {
    std::vector<std::int16_t> stereo(2 * 8000);
    expect_success(table.render(stereo.data(), 8000), &table);
    std::uint64_t sum = 0;
    for (std::size_t i = 8000; i < stereo.size(); i += 2)
        sum += static_cast<std::uint64_t>(stereo[i + channel] * stereo[i + channel]);
    return sum;
}

// 16-bit mono at 22050 frames per second.
Bytes wav(const std::vector<std::int16_t>& samples) {
    const auto size = static_cast<std::uint8_t>(samples.size() * 2 % 256);
    const auto high = static_cast<std::uint8_t>(samples.size() * 2 / 256);
    Bytes file = {'R', 'I', 'F', 'F', 36, high, 0,   0,   'W', 'A',  'V',  'E',  'f', 'm',  't',
                  ' ', 16,  0,   0,   0,  1,    0,   1,   0,   0x22, 0x56, 0,    0,   0x44, 0xac,
                  0,   0,   2,   0,   16, 0,    'd', 'a', 't', 'a',  size, high, 0,   0};
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(samples.data());
    file.insert(file.end(), bytes, bytes + samples.size() * 2);
    return file;
}

void try_audio() {
    const auto table = contract<Audio>(__mAudio_instance());
    if (!table)
        return expect(false, table.reason);
    std::vector<std::int16_t> square(12000);
    for (std::size_t i = 0; i < square.size(); ++i)
        square[i] = i / 50 % 2 == 0 ? 9000 : -9000;
    // Before anything has opened the device.
    expect(table->load_sound("\u266c.wav") == 0 && *table->last_error() != '\0',
           "a sound that is not there is loaded");
    expect(write_file(L"\u266b.wav", wav(square)), "no file to load");
    const SoundHandle sound = table->load_sound("\u266b.wav");
    expect_success(sound != 0, table);
    expect_success(table->play(sound, {.placed = true, .position = {3, 0, 0}}) != 0, table);
    const std::uint64_t left = energy(*table, 0);
    table->set_master_gain(1.0F);
    expect(energy(*table, 1) > 4 * left + 1000, "a sound on the right is not louder there");
    expect(table->load_sound("\xe4.wav") == 0 && *table->last_error() != '\0',
           "a name that is not UTF-8 is loaded");
}

// A second instance of the plug-in, as the one in the folder "plugin" is one side of a connection.
Network other_side() {
    Network table;
    CopyFileW(L"plugin/network-enet.dll", L"other_side.dll", FALSE);
    HMODULE const library = LoadLibraryW(L"other_side.dll");
    const auto function = [library](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(library, name));
    };
    DSPrefHashMap<void> parameters;
    if (library == nullptr ||
        !reinterpret_cast<bool (*)(DSPrefHashMap<void>*)>(function("initialize"))(&parameters))
        return table;
    reinterpret_cast<void (*)(void**)>(function("connect_network_interface"))(
        reinterpret_cast<void**>(&table));
    return table;
}

// Polls both sides until `side` reports an event of that kind; NOTHING after five seconds.
NetworkEvent wait_for(NetworkEvent::Kind kind, const Network& side, const Network& other) {
    for (int i = 0; i < 500; ++i) {
        NetworkEvent event;
        other.poll(event);
        while (side.poll(event))
            if (event.kind == kind)
                return event;
        Sleep(10);
    }
    return {};
}

void try_network() {
    const auto host = contract<Network>(__mNetwork_instance());
    if (!host)
        return expect(false, host.reason);
    const Network guest = other_side();
    if (guest.join == nullptr)
        return expect(false, "no second instance");
    expect_success(host->host(0, 2, 77), host);
    const std::uint16_t port = host->get_port();
    expect_success(guest.join("localhost", port, 77, 3.0) != 0, &guest);
    expect(wait_for(NetworkEvent::JOINED, guest, *host).peer != 0, "the guest does not join");
    const Bytes message(3000, 0x5a);
    expect_success(guest.send(0, message.data(), 3000, true), &guest);
    const NetworkEvent event = wait_for(NetworkEvent::MESSAGE, *host, guest);
    expect(event.size == 3000 && std::equal(message.begin(), message.end(), event.data),
           "another message arrives");
    guest.leave();
    expect(wait_for(NetworkEvent::LEFT, *host, guest).peer != 0, "the guest does not leave");
    expect(!guest.host(port, 2, 77) &&
               std::strstr(guest.last_error(), "is in use; choose another") != nullptr,
           std::string("a port that is taken is taken again: ") + guest.last_error());
    host->leave();
}

void try_input() {
    const auto table = contract<Input>(__mInput_instance());
    if (!table)
        return expect(false, table.reason);
    std::printf("plug_ins: input: '%s'\n", table->last_error());
    constexpr auto A = static_cast<std::uint16_t>(digital_code("A"));
    const char* const label = table->key_label(A);
    expect(label != nullptr && std::string_view(label) == "A", "the key A has another label");
    const bool has_display = *table->last_error() == '\0';
    expect_success(table->open_window("\u20ac", 70, 50) == has_display, table);
    for (int i = 0; i < 3; ++i)
        table->update();
    expect(!table->key_down(A) && !table->quit_requested(), "a key is down that nobody pressed");
}

constexpr struct {
    const char* name;
    const char* service;
    void (*run)();
} TRIALS[] = {
    {"image", "GRAPHICS", try_image},     {"graphics-gl", "GRAPHICS", try_graphics},
    {"clock", "SYSTEM", try_clock},       {"audio-openal", "AUDIO", try_audio},
    {"network-enet", "NET", try_network}, {"input-sdl", "INPUT", try_input},
};

} // namespace

int main(int count, char** names) {
    const auto is_named = [&](const char* name) {
        return std::any_of(names + 1, names + count,
                           [&](const char* word) { return std::string_view(word) == name; });
    };
    for (const auto& trial : TRIALS)
        if (is_named(trial.name))
            choose_plugin(trial.service, trial.name);
    render_audio_offline();
    __mCore_open();
    for (const auto& trial : TRIALS)
        if (is_named(trial.name)) {
            tried = trial.name;
            trial.run();
        }
    return failures;
}
