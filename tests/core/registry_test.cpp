// SPDX-License-Identifier: MIT
#include "loaded_library.h"

#include "quillon/containers/name_hash.h"

#include <gmock/gmock.h>

#include <new>

using testing::ElementsAre;

namespace {

constexpr const char* FUNCTION = "note_argument";

// The parameter that plug-in 0 received under a name.
void* parameter(const Host& host, const char* name) {
    auto* const received =
        reinterpret_cast<void* (*)()>(host.plugin_function(0, "received_parameters"));
    return static_cast<quillon::DSPrefHashMap<void>*>(received())->find(quillon::name_hash(name));
}

} // namespace

TEST(Registry, InvalidIndicesAnswerInvalid) {
    const Host host({"graphics"});
    host.open();
    for (const auto invalid : std::initializer_list<std::int16_t>{-32768, -1, 1, 32767}) {
        EXPECT_STREQ(host.plugin_name(invalid), "INVALID");
        EXPECT_STREQ(host.plugin_purpose(invalid), "INVALID");
        EXPECT_FALSE(EXPORT_OF(host, __mCore_check_plugin_compatibility)(invalid, "GRAPHICS"));
        EXPECT_EQ(host.plugin_function(invalid, FUNCTION), nullptr);
        EXPORT_OF(host, __mCore_call_plugin_function)(invalid, FUNCTION, nullptr);
    }
    EXPECT_STREQ(host.plugin_name(0), "Graphics");
    EXPECT_STREQ(host.plugin_purpose(0), "Module");
}

TEST(Registry, TheFirstPluginOfAPurposeThatIsCompatibleIsFound) {
    const Host host({"tool", "serves_nothing", "input_and_system", "all_five"});
    host.scan("plugin");
    EXPECT_EQ(host.first_plugin("Module", ""), 1);
    EXPECT_TRUE(Host::events("").empty()) << "an empty word needs no question";
    EXPECT_EQ(host.first_plugin("Module", "SYSTEM"), 2);
    EXPECT_EQ(host.first_plugin("Module", "AUDIO"), 3);
    EXPECT_EQ(host.first_plugin("Module tool", "GRAPHICS"), 0);
    EXPECT_EQ(host.first_plugin("Module tool", "AUDIO"), -1);
    EXPECT_EQ(host.first_plugin("MODULE", ""), -1);
}

TEST(Registry, FunctionsAreResolvedBeforeThePluginIsInitialised) {
    char argument[] = "forty-two";
    const Host host({"tool", "refuses"});
    host.open();
    auto* const call = EXPORT_OF(host, __mCore_call_plugin_function);
    EXPECT_EQ(host.plugin_function(0, "no_such_function"), nullptr);
    EXPECT_EQ(host.plugin_function(0, "printf"), nullptr) << "of a dependency";
    call(0, "no_such_function", argument);
    EXPECT_THAT(Host::events(), testing::Each("Graphics: initialize"));
    EXPECT_NE(host.plugin_function(0, FUNCTION), nullptr);
    call(0, FUNCTION, argument);
    EXPECT_EQ(host.plugin_function(1, FUNCTION), nullptr);
    call(1, FUNCTION, argument);
    EXPECT_THAT(Host::events(),
                ElementsAre("Graphics: initialize", "Tool: initialize", "Tool: argument forty-two",
                            "Graphics: initialize", "Graphics: initialize"));
}

TEST(Registry, AnInitializeThatReachesForItsOwnPluginDoesNotStartOver) {
    void* own_function = &own_function;
    const Host host({"graphics"});
    host.observe([&](const std::string& event) {
        if (event == "Graphics: initialize" && host.open())
            own_function = host.plugin_function(0, FUNCTION);
    });
    host.open();
    EXPECT_EQ(own_function, nullptr);
    EXPECT_EQ(host.plugin_count(), 1u);
}

TEST(Registry, ExceptionsReachTheHostAndChangeNothingElse) {
    bool throws = true;
    const Host host({"graphics", "throws", "tool"});
    host.observe([&](const std::string& event) {
        if (throws)
            throw std::runtime_error(event);
    });
    // The code of its type is still there.
    EXPECT_THAT(host.open, testing::ThrowsMessage<std::exception>("a failure of Fixture"));
    EXPECT_EQ(host.plugin_count(), 1u);
    EXPECT_THROW(host.plugin_function(0, FUNCTION), std::runtime_error);
    throws = false;
    EXPECT_NE(host.plugin_function(0, FUNCTION), nullptr);
    EXPECT_NE(parameter(host, "Modules"), nullptr) << "filed before the scan";
}

TEST(Registry, TheFirstUniquePointerUnderAKeyStays) {
    int second = 0;
    const Host host({});
    auto* const store = EXPORT_OF(host, __mCore_store_unique_pointer);
    auto* const get = EXPORT_OF(host, __mCore_get_unique_pointer);
    void* const first = ::operator new(8); // the library frees it
    EXPECT_EQ(store(first, 7), first);
    EXPECT_EQ(store(&second, 7), &second);
    EXPECT_EQ(get(7), first);
    EXPECT_EQ(get(8), nullptr);
}

TEST(Registry, PluginsFindTheListOfPluginsAndTheFirstParameterUnderAName) {
    int first = 1;
    int second = 2;
    for (const char* name : {"name", "Modules"}) {
        const Host host({"graphics", "tool"});
        auto* const add = EXPORT_OF(host, __mCore_add_plugin_init_parameter);
        EXPECT_EQ(add(name, &first), &first);
        EXPECT_EQ(add(name, &second), &second);
        host.open();
        EXPECT_EQ(parameter(host, name), &first);
        if (void* const modules = parameter(host, "Modules"); modules != &first) {
            const auto& list = *static_cast<quillon::DSParray<quillon::cPlugin>*>(modules);
            ASSERT_EQ(list.count(), 2u);
            EXPECT_TRUE(list.get(0)->initialised);
            EXPECT_STREQ(list.get(1)->get_plugin_name(), "Tool");
        }
    }
}
