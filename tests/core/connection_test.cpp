#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAreArray;

namespace {

const struct {
    const char* name;
    std::vector<std::string> plugins;
    std::vector<std::string> events; // what happens during the open, questions left out
    std::string connected;           // initials of the modules with a table
} CONNECTIONS[] = {
    {"FirstOfTwoWins",
     {"other_graphics", "graphics"},
     {"Other: initialize", "Other: connect graphics"},
     "G"},
    {"TheRestOfWhatIsFree",
     {"graphics", "all_five"},
     {"Graphics: initialize", "Graphics: connect graphics", "All: initialize", "All: connect input",
      "All: connect system", "All: connect network", "All: connect sound"},
     "GISNA"},
    {"PrerequisiteBehindWaitsForTheNextPass",
     {"needs_graphics", "graphics", "input_and_system"},
     {"Graphics: initialize", "Graphics: connect graphics", "Both: initialize",
      "Both: connect input", "Both: connect system", "Sound: initialize", "Sound: connect sound"},
     "GISA"},
    {"PrerequisiteInOtherCase",
     {"graphics", "needs_other_case"},
     {"Graphics: initialize", "Graphics: connect graphics"},
     "G"},
    {"PrerequisiteIsItself", {"needs_itself"}, {}, ""},
    {"PrerequisiteServesNothing", {"serves_nothing", "needs_idle"}, {}, ""},
    {"PrerequisiteIsNoModule", {"tool", "needs_tool"}, {}, ""},
    {"NamesakeThatIsNotInitialisedIsPassedOver",
     {"refuses", "graphics", "needs_graphics"},
     {"Refuses: initialize", "Graphics: initialize", "Graphics: connect graphics",
      "Sound: initialize", "Sound: connect sound"},
     "GA"},
    {"OtherPurposes", {"tool", "module_in_lower_case"}, {}, ""},
    {"InitializeIsAskedAgain",
     {"hesitates"},
     {"Hesitates: initialize", "Hesitates: initialize", "Hesitates: connect input",
      "Hesitates: connect graphics"},
     "GI"},
    {"NoConnectEntryPoint",
     {"no_connect", "graphics"},
     {"Graphics: initialize", "Graphics: connect graphics"},
     "G"},
};

std::string connected_modules(const LoadedLibrary& library) {
    std::string initials;
    const auto note = [&initials](char initial, void** interface) {
        if (interface != nullptr)
            initials += initial;
    };
    note('G', EXPORT_OF(library, __mGraphics_instance)()->interface);
    note('I', EXPORT_OF(library, __mInput_instance)()->interface);
    note('S', EXPORT_OF(library, __mSystem_instance)()->interface);
    note('N', EXPORT_OF(library, __mNetwork_instance)()->interface);
    note('A', EXPORT_OF(library, __mAudio_instance)()->interface);
    return initials;
}

} // namespace

TEST(Connection, HappensInThisOrder) {
    for (const auto& row : CONNECTIONS) {
        SCOPED_TRACE(row.name);
        const ScratchFolder folder;
        folder.add_plugins(row.plugins);
        const LoadedLibrary library;
        EXPECT_TRUE(EXPORT_OF(library, __mCore_open)());
        EXPECT_THAT(ScratchFolder::events(), ElementsAreArray(row.events));
        EXPECT_EQ(connected_modules(library), row.connected);
        EXPECT_EQ(EXPORT_OF(library, __mCore_get_plugin_count)(), row.plugins.size());
    }
}

TEST(Connection, ATakenModuleIsOfferedToNobodyElse) {
    const ScratchFolder folder;
    folder.add_plugins({"graphics", "other_graphics"});
    const LoadedLibrary library;
    EXPORT_OF(library, __mCore_open)();
    const std::vector<std::string> events = ScratchFolder::events("");
    EXPECT_EQ(std::count(events.begin(), events.end(), "Graphics: asked GRAPHICS"), 1);
    EXPECT_EQ(std::count(events.begin(), events.end(), "Other: asked GRAPHICS"), 0);
    EXPECT_EQ(std::count(events.begin(), events.end(), "Other: asked AUDIO"), 2);
}
