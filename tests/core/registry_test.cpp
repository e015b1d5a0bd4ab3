#include "loaded_library.h"

#include "quillon/containers/names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <new>

using testing::ElementsAre;

namespace {

constexpr std::int16_t LOWEST = std::numeric_limits<std::int16_t>::min();
constexpr std::int16_t HIGHEST = std::numeric_limits<std::int16_t>::max();

// A library that has loaded and connected the given fixtures.
class Registry : public testing::Test {
protected:
    void open(const std::vector<std::string>& fixtures) {
        folder.add_plugins(fixtures);
        EXPORT_OF(library, __mCore_open)();
        std::filesystem::remove("events");
    }

    // What plug-in 0 has received under a name.
    void* parameter(const char* name) const {
        auto* const received = reinterpret_cast<void* (*)()>(
            EXPORT_OF(library, __mCore_get_plugin_function)(0, "received_parameters"));
        auto* const parameters = static_cast<quillon::DSPrefHashMap<void>*>(received());
        return parameters->find(quillon::name_hash(name));
    }

    ScratchFolder folder;
    LoadedLibrary library;
};

} // namespace

TEST_F(Registry, InvalidIndicesAnswerInvalid) {
    open({"graphics"});
    for (const std::int16_t index : {LOWEST, std::int16_t{-1}, std::int16_t{1}, HIGHEST}) {
        EXPECT_STREQ(EXPORT_OF(library, __mCore_get_plugin_name)(index), "INVALID");
        EXPECT_STREQ(EXPORT_OF(library, __mCore_get_plugin_purpose)(index), "INVALID");
        EXPECT_FALSE(EXPORT_OF(library, __mCore_check_plugin_compatibility)(index, "GRAPHICS"));
        EXPECT_EQ(EXPORT_OF(library, __mCore_get_plugin_function)(index, "shutdown"), nullptr);
        EXPORT_OF(library, __mCore_call_plugin_function)(index, "note_argument", nullptr);
    }
    EXPECT_STREQ(EXPORT_OF(library, __mCore_get_plugin_name)(0), "Graphics");
    EXPECT_STREQ(EXPORT_OF(library, __mCore_get_plugin_purpose)(0), "Module");
}

TEST_F(Registry, FindsTheFirstPluginOfAPurposeThatSaysYes) {
    open({"tool", "serves_nothing", "input_and_system", "all_five"});
    auto* const find = EXPORT_OF(library, __mCore_get_first_valid_plugin);
    EXPECT_EQ(find("Module", ""), 1);
    EXPECT_TRUE(folder.events("").empty()) << "an empty word is asked of nobody";
    EXPECT_EQ(find("Module", "SYSTEM"), 2);
    EXPECT_EQ(find("Module", "AUDIO"), 3);
    EXPECT_EQ(find("Module tool", "GRAPHICS"), 0);
    EXPECT_EQ(find("Module tool", "AUDIO"), -1);
    EXPECT_EQ(find("MODULE", ""), -1);
}

TEST_F(Registry, AFunctionIsResolvedBeforeThePluginIsInitialised) {
    open({"tool"});
    auto* const function = EXPORT_OF(library, __mCore_get_plugin_function);
    EXPECT_EQ(function(0, "no_such_function"), nullptr);
    // The loader finds this one in the plug-in's dependencies.
    EXPECT_EQ(function(0, "printf"), nullptr);
    EXPECT_TRUE(folder.events().empty());
    EXPECT_NE(function(0, "note_argument"), nullptr);
    EXPECT_NE(function(0, "note_argument"), nullptr);
    EXPECT_THAT(folder.events(), ElementsAre("Tool: initialize"));
}

TEST_F(Registry, APluginThatRefusesIsAskedEveryTime) {
    open({"refuses"});
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(EXPORT_OF(library, __mCore_get_plugin_function)(0, "note_argument"), nullptr);
    EXPECT_THAT(folder.events(), ElementsAre("Graphics: initialize", "Graphics: initialize"));
}

TEST_F(Registry, AnInitializeThatReachesForItsOwnPluginDoesNotStartOver) {
    void* own_function = this;
    bool opened = false;
    library.observe([&](const std::string& event) {
        if (event != "Graphics: initialize")
            return;
        own_function = EXPORT_OF(library, __mCore_get_plugin_function)(0, "note_argument");
        opened = EXPORT_OF(library, __mCore_open)();
    });
    open({"graphics"});
    EXPECT_EQ(own_function, nullptr);
    EXPECT_TRUE(opened);
    EXPECT_EQ(EXPORT_OF(library, __mCore_get_plugin_count)(), 1u);
    library.observe([](const std::string&) {});
}

TEST_F(Registry, AThrowingInitializeIsAskedAgain) {
    open({"tool"});
    library.observe([](const std::string& event) { throw std::runtime_error(event); });
    auto* const function = EXPORT_OF(library, __mCore_get_plugin_function);
    EXPECT_THROW(function(0, "note_argument"), std::runtime_error);
    library.observe([](const std::string&) {});
    EXPECT_NE(function(0, "note_argument"), nullptr);
}

TEST_F(Registry, AThrowingNameEndsTheScanAndKeepsWhatWasLoaded) {
    try {
        open({"graphics", "throws", "tool"});
        FAIL() << "no exception";
    } catch (const std::exception& failure) {
        EXPECT_STREQ(failure.what(), "a failure of Fixture");
    }
    EXPECT_EQ(EXPORT_OF(library, __mCore_get_plugin_count)(), 1u);
    EXPECT_NE(parameter("Modules"), nullptr) << "filed before the scan";
}

TEST_F(Registry, CallsAFunctionWithOneArgument) {
    open({"graphics", "refuses"});
    char argument[] = "forty-two";
    auto* const call = EXPORT_OF(library, __mCore_call_plugin_function);
    call(0, "note_argument", argument);
    call(0, "no_such_function", argument);
    call(1, "note_argument", argument);
    EXPECT_THAT(folder.events(),
                ElementsAre("Graphics: argument forty-two", "Graphics: initialize"));
}

TEST_F(Registry, TheFirstUniquePointerUnderAKeyStays) {
    auto* const store = EXPORT_OF(library, __mCore_store_unique_pointer);
    auto* const get = EXPORT_OF(library, __mCore_get_unique_pointer);
    void* const first = ::operator new(8); // the library frees it
    int second = 0;
    EXPECT_EQ(get(7), nullptr);
    EXPECT_EQ(store(nullptr, 7), nullptr);
    EXPECT_EQ(store(first, 7), first);
    EXPECT_EQ(store(&second, 7), &second);
    EXPECT_EQ(get(7), first);
}

TEST_F(Registry, PluginsFindTheParametersOfTheHostAndTheListOfPlugins) {
    int first = 1;
    int second = 2;
    auto* const add = EXPORT_OF(library, __mCore_add_plugin_init_parameter);
    EXPECT_EQ(add("name", nullptr), nullptr);
    EXPECT_EQ(add("name", &first), &first);
    EXPECT_EQ(add("name", &second), &second);
    open({"graphics", "tool"});
    EXPECT_EQ(parameter("name"), &first);

    const auto* list = static_cast<quillon::DSParray<quillon::cPlugin>*>(parameter("Modules"));
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->count(), 2u);
    EXPECT_STREQ(list->get(0)->get_plugin_name(), "Graphics");
    EXPECT_TRUE(list->get(0)->initialised);
    EXPECT_STREQ(list->get(1)->get_plugin_name(), "Tool");
}

TEST_F(Registry, WhatTheHostFilesUnderModulesStays) {
    int mine = 1;
    EXPORT_OF(library, __mCore_add_plugin_init_parameter)("Modules", &mine);
    open({"graphics"});
    EXPECT_EQ(parameter("Modules"), &mine);
}
