// SPDX-License-Identifier: MIT
// `quillon check`: a plug-in that is wrong in one way fails by the row that says so.
#include "loaded_library.h"
#include "tool_run.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

namespace {

// The first promise that is not kept, and what of it.
std::string first_fault(const ToolRun& run) {
    for (const auto& row : nlohmann::json::parse(run.out))
        if (const std::string fault = row["fault"]; !fault.empty())
            return row["promise"].get<std::string>() + ": " + fault;
    return "";
}

TEST(Check, FaultFailsByItsRow) {
    const ScratchFolder folder;

    const struct {
        const char* plugin;
        const char* fault;
        const char* row;
    } cases[] = {
        {"wrong_clock", "nameless", "names its contract: entry 0 is empty"},
        {"wrong_clock", "next version", "names its contract: it serves 'quillon.system' version 2"},
        {"wrong_clock", "hole", "fills its operations and leaves the reserved entries: entry 2 is"},
        {"wrong_clock", "reserved",
         "fills its operations and leaves the reserved entries: entry 9"},
        {"wrong_clock", "null reason", "last_error returns null"},
        {"wrong_clock", "falls", "a time that never falls: get_time falls"},
        {"wrong_clock", "milliseconds", "pauses as long as it is asked to"},
        {"wrong_clock", "short pause", "pauses as long as it is asked to"},
        {"wrong_clock", "crash", "pauses as long as it is asked to, by its own time too: crashes"},
        {"wrong_clock", "endless pause", ": does not come back within 2 seconds"},
        {"wrong_image", "loads nothing", "says why a picture does not load: load_bitmap"},
        {"wrong_image", "no reasons", "load_bitmap of missing.png fails without a reason in"},
        {"wrong_image", "saves nothing", "loads the pixels that it saved"},
        {"wrong_graphics-gl", "opens again", "opens one surface without a window: a second open"},
        {"wrong_graphics-gl", "black frames", "clears a frame to the sky"},
        {"wrong_graphics-gl", "no meshes", "draws a mesh at its place, scaled and then rotated"},
        {"wrong_graphics-gl", "meshes turn first", "rotated: the mesh's right end"},
        {"wrong_graphics-gl", "own light", "lights a mesh by the lights that are set: a mesh with"},
        {"wrong_graphics-gl", "old meshes", "replaces and releases a mesh: where only the old"},
        {"wrong_graphics-gl", "no lines", "joins points by lines: the first"},
        {"wrong_graphics-gl", "short lines", "joins points by lines: the second"},
        {"wrong_graphics-gl", "no text", "as large as it measures: the text is not there"},
        {"wrong_graphics-gl", "text elsewhere", "there is text outside of what it measures"},
        {"wrong_input-sdl", "rattles", "answers the same until the next update: key_down of 0"},
        {"wrong_audio-openal", "noise", "renders silence where nothing plays"},
        {"wrong_audio-openal", "plays for ever", "passes over handles that are none"},
        {"wrong_network-enet", "always somebody", "has nobody before it hosts or joins: get_peers"},
        {"wrong_network-enet", "hosts again", "hosts once, on a free port: a second host"},
        {"graphics", "", "it has connect_input_interface but says no to INPUT"},
        {"all_five", "", "names its contract: entry 0 is empty"},
        {"brings_library", "", "it has connect_graphics_interface but says no to GRAPHICS"},
        {"tool", "", "keeps its name and its purpose: its purpose is not 'Module'"},
        {"says_yes", "", "it says yes to a word of no meaning"},
        {"wrong_clock", "not ready", "initialises: initialize returns false on this machine"},
        {"crashes", "", "loads: crashes (Aborted) in get_plugin_name"},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(std::string(row.plugin) + ", " + row.fault);
        const std::string limit = row.fault == std::string("endless pause") ? "2" : "60";
        const ToolRun run =
            run_tool("check --json --limit " + limit + " " FIXTURE_FOLDER "/" + row.plugin + ".so",
                     std::string("ASAN_OPTIONS=detect_leaks=0 FAULT='") + row.fault + "'");
        EXPECT_EQ(1, run.code);
        EXPECT_THAT(first_fault(run), testing::HasSubstr(row.row)) << run.out << run.error;
        EXPECT_THAT(run.error, testing::Not(testing::HasSubstr("another library")));
    }
}

} // namespace
