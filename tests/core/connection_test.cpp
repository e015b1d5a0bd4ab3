#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <malloc.h>

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
      "Both: connect input", "Both: connect system", "Sound: initialize after Graphics",
      "Sound: connect sound"},
     "GISA"},
    {"PrerequisiteInOtherCase",
     {"graphics", "needs_other_case"},
     {"Graphics: initialize", "Graphics: connect graphics"},
     "G"},
    {"PrerequisiteIsItself", {"needs_itself"}, {}, ""},
    {"OneOfThreePrerequisitesServesNothing",
     {"graphics", "serves_nothing", "input_and_system", "needs_three"},
     {"Graphics: initialize", "Graphics: connect graphics", "Both: initialize",
      "Both: connect input", "Both: connect system"},
     "GIS"},
    {"PrerequisiteIsNoModule", {"tool", "needs_tool"}, {}, ""},
    {"NamesakeThatIsNotInitialisedIsPassedOver",
     {"refuses", "graphics", "needs_graphics"},
     {"Graphics: initialize", "Graphics: initialize", "Graphics: connect graphics",
      "Sound: initialize after Graphics", "Sound: connect sound"},
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

struct Module {
    char initial;
    void** interface;
    std::size_t entries;
};

std::vector<Module> modules(const LoadedLibrary& library) {
    return {{'G', EXPORT_OF(library, __mGraphics_instance)()->interface, 97},
            {'I', EXPORT_OF(library, __mInput_instance)()->interface, 35},
            {'S', EXPORT_OF(library, __mSystem_instance)()->interface, 25},
            {'N', EXPORT_OF(library, __mNetwork_instance)()->interface, 26},
            {'A', EXPORT_OF(library, __mAudio_instance)()->interface, 14}};
}

// Initials of the modules that have a table, which holds all its entries.
std::string connected_modules(const LoadedLibrary& library) {
    std::string initials;
    for (const Module& module : modules(library)) {
        if (module.interface == nullptr)
            continue;
        initials += module.initial;
        EXPECT_GE(malloc_usable_size(module.interface), module.entries * sizeof(void*));
    }
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

TEST(Connection, AThrowingConnectEntryPointLeavesTheModuleFree) {
    const ScratchFolder folder;
    folder.add_plugins({"graphics"});
    const LoadedLibrary library;
    library.observe([](const std::string& event) {
        if (event == "Graphics: connect graphics")
            throw std::runtime_error(event);
    });
    EXPECT_THROW(EXPORT_OF(library, __mCore_open)(), std::runtime_error);
    EXPECT_EQ(connected_modules(library), "");
    library.observe([](const std::string&) {});
    EXPORT_OF(library, __mCore_open)();
    EXPECT_EQ(connected_modules(library), "G");
}
