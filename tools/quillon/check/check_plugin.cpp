// SPDX-License-Identifier: MIT
// The checks that all plug-ins share, and the way to those of their contracts.
#include "check/check.h"

#include "child.h"
#include "folder_of_links.h"
#include "platform.h"
#include "plugins/contracts/audio.h"
#include "plugins/contracts/graphics.h"
#include "plugins/contracts/input.h"
#include "plugins/contracts/network.h"
#include "plugins/contracts/system.h"
#include "quillon/containers/list.h"
#include "quillon/core/plugin_registry.h"

#include <memory>

namespace fs = std::filesystem;

namespace tool {
namespace {

using quillon::ContractIdentity;

constexpr const char* PLUGIN = "plug-in";

void report_result(const std::string& subject, const std::string& promise, const std::string& fault,
                   bool is_begun) {
    report({{"result", {{"subject", subject}, {"promise", promise}, {"fault", fault}}},
            {"is_begun", is_begun}});
}

// The plug-in's library and its entry points.
class Patient {
public:
    explicit Patient(const fs::path& file) : library(file) {}

    template <typename Function>
    Function* entry_point(const char* name) const {
        return reinterpret_cast<Function*>(platform::own_function(library.handle(), name));
    }

    const char* name() const { return entry_point<const char*()>("get_plugin_name")(); }

    const char* purpose() const { return entry_point<const char*()>("get_plugin_purpose")(); }

    bool has(const char* word) const {
        return entry_point<bool(const char*)>("get_plugin_compatibility")(word);
    }

    bool initialize() const {
        return entry_point<bool(quillon::DSPrefHashMap<void>*)>("initialize")(parameters());
    }

    void shutdown() const { entry_point<void()>("shutdown")(); }

private:
    // What a host files that has neither devices nor other machines.
    static quillon::DSPrefHashMap<void>* parameters() {
        static quillon::DSPrefHashMap<void> map;
        map.add(const_cast<char*>(quillon::OFFLINE_AUDIO),
                quillon::name_hash(quillon::AUDIO_DEVICE));
        map.add(const_cast<char*>("127.0.0.1"), quillon::name_hash(quillon::NETWORK_ADDRESS));
        return &map;
    }

    platform::LibraryFile library;
};

using Table = std::vector<void*>;

Table connect(const Patient& patient, const char* entry_point, std::size_t size) {
    Table table(size);
    patient.entry_point<void(void**)>(entry_point)(table.data());
    return table;
}

template <typename Contract>
const Contract& as(const Table& table) {
    return *reinterpret_cast<const Contract*>(table.data());
}

ContractIdentity identity_of(const Table& table) {
    expect(table[0] != nullptr, "entry 0 is empty");
    ContractIdentity identity;
    reinterpret_cast<quillon::Identify*>(table[0])(&identity);
    return identity;
}

template <typename Contract>
bool serves(const Table& table) {
    return quillon::detail::is_equal(identity_of(table), Contract::IDENTITY);
}

// A run of entries, of which the last is not included.
struct Entries {
    std::size_t first;
    std::size_t last;
};

// The operations of a contract are filled, and the reserved entries are not.
void expect_filled(const Table& table, std::initializer_list<Entries> operations,
                   std::size_t first_own) {
    for (std::size_t i = 0; i < first_own; ++i) {
        const bool is_operation = std::ranges::any_of(
            operations, [i](const Entries& run) { return run.first <= i && i < run.last; });
        expect(is_operation == (table[i] != nullptr),
               "entry " + std::to_string(i) +
                   (is_operation ? " is empty" : " is reserved and not empty"));
    }
    const auto last_error = reinterpret_cast<const char* (*)()>(table[1]);
    expect(last_error() != nullptr, "last_error returns null");
}

struct Service {
    const char* keyword;
    const char* entry_point;
    std::size_t size;
    std::size_t first_own;
    const char* contracts; // in words
    // The filled entries of the contract that the table serves; none if it serves no known one.
    std::initializer_list<Entries> (*operations)(const Table& table);
    void (*check)(const Patient& patient, const Table& table);
};

constexpr std::initializer_list<Entries> NO_ENTRIES = {};
constexpr std::initializer_list<Entries> PICTURES = {{0, 2}, {15, 17}};
constexpr std::initializer_list<Entries> GRAPHICS = {{0, 28}};
constexpr std::initializer_list<Entries> INPUT = {{0, 9}, {11, 18}};
constexpr std::initializer_list<Entries> SYSTEM = {{0, 3}, {11, 12}};
constexpr std::initializer_list<Entries> NETWORK = {{0, 12}};
constexpr std::initializer_list<Entries> AUDIO = {{0, 13}};

// Another copy of the file has a state of its own.
const quillon::Network* second_network(const fs::path& file) {
    static std::unique_ptr<Patient> second;
    static Table table;
    fs::copy_file(file, "second.so");
    second = std::make_unique<Patient>(fs::absolute("second.so"));
    expect(second->initialize(), "a second copy does not initialise");
    table =
        connect(*second, "connect_network_interface", quillon::ENTRY_COUNT<quillon::NetworkTable>);
    return &as<quillon::Network>(table);
}

fs::path checked_file;

const Service SERVICES[] = {
    {"GRAPHICS", "connect_graphics_interface", quillon::ENTRY_COUNT<quillon::GraphicsTable>,
     quillon::FIRST_OWN_ENTRY<quillon::GraphicsTable>,
     "'quillon.graphics' version 1 and 'quillon.pictures' version 1",
     [](const Table& table) {
         return serves<quillon::Graphics>(table)   ? GRAPHICS
                : serves<quillon::Pictures>(table) ? PICTURES
                                                   : NO_ENTRIES;
     },
     [](const Patient&, const Table& table) {
         check_pictures(as<quillon::Pictures>(table));
         if (serves<quillon::Graphics>(table))
             check_graphics(as<quillon::Graphics>(table));
     }},
    {"INPUT", "connect_input_interface", quillon::ENTRY_COUNT<quillon::InputTable>,
     quillon::FIRST_OWN_ENTRY<quillon::InputTable>, "'quillon.input' version 1",
     [](const Table& table) { return serves<quillon::Input>(table) ? INPUT : NO_ENTRIES; },
     [](const Patient&, const Table& table) { check_input(as<quillon::Input>(table)); }},
    {"SYSTEM", "connect_system_interface", quillon::ENTRY_COUNT<quillon::SystemTable>,
     quillon::FIRST_OWN_ENTRY<quillon::SystemTable>, "'quillon.system' version 1",
     [](const Table& table) { return serves<quillon::System>(table) ? SYSTEM : NO_ENTRIES; },
     [](const Patient&, const Table& table) { check_system(as<quillon::System>(table)); }},
    {"NET", "connect_network_interface", quillon::ENTRY_COUNT<quillon::NetworkTable>,
     quillon::FIRST_OWN_ENTRY<quillon::NetworkTable>, "'quillon.network' version 1",
     [](const Table& table) { return serves<quillon::Network>(table) ? NETWORK : NO_ENTRIES; },
     [](const Patient&, const Table& table) {
         check_network(as<quillon::Network>(table), [] { return second_network(checked_file); });
     }},
    {"AUDIO", "connect_sound_interface", quillon::ENTRY_COUNT<quillon::AudioTable>,
     quillon::FIRST_OWN_ENTRY<quillon::AudioTable>, "'quillon.audio' version 1",
     [](const Table& table) { return serves<quillon::Audio>(table) ? AUDIO : NO_ENTRIES; },
     [](const Patient&, const Table& table) { check_audio(as<quillon::Audio>(table)); }},
};

// As in a host, the library knows the plug-in that is connected.
void register_plugin(const fs::path& file) {
    const platform::OutputCapture without_its_lines;
    __mCore_parse_folder_for_plugins(FolderOfLinks({file}).path().string().c_str());
}

void check_texts(const Patient& patient) {
    check(PLUGIN, "keeps its name and its purpose", [&] {
        const std::string name = patient.name();
        expect(!name.empty(), "its name is empty");
        expect(name == patient.name(), "its name changes");
        expect(patient.purpose() == std::string("Module"),
               "its purpose is not 'Module', so no module is offered to it");
    });
    check(PLUGIN, "says yes to the modules that it connects", [&] {
        expect(!patient.has("NO SUCH MODULE"), "it says yes to a word of no meaning");
        bool serves_one = false;
        for (const Service& service : SERVICES) {
            const bool connects = patient.entry_point<void(void**)>(service.entry_point) != nullptr;
            expect(patient.has(service.keyword) == connects,
                   std::string(connects ? "it has " : "it says yes to ") +
                       (connects ? service.entry_point : service.keyword) +
                       (connects ? " but says no to " : " without ") +
                       (connects ? service.keyword : service.entry_point));
            serves_one |= connects;
        }
        expect(serves_one, "it serves none of the five modules");
    });
    check(PLUGIN, "lists its prerequisites", [&] {
        quillon::DSParray<std::string> names(false);
        patient.entry_point<void(quillon::DSParray<std::string>&)>("get_plugin_prereqs")(names);
        for (std::uint32_t i = 0; i < names.count(); ++i)
            expect(names.get(i) != nullptr, "one of them is null");
    });
}

void check_service(const Patient& patient, const Service& service) {
    Table table;
    bool is_filled = false;
    check(service.keyword, "names its contract", [&] {
        table = connect(patient, service.entry_point, service.size);
        expect(std::size(service.operations(table)) > 0,
               "it serves " + quillon::detail::to_text(identity_of(table)) +
                   ", and what is known is " + service.contracts);
    });
    if (table.empty() || table[0] == nullptr || std::size(service.operations(table)) == 0)
        return;
    check(service.keyword, "fills its operations and leaves the reserved entries", [&] {
        expect_filled(table, service.operations(table), service.first_own);
        is_filled = true;
    });
    if (is_filled)
        service.check(patient, table);
}

} // namespace

void expect(bool holds, const std::string& otherwise) {
    if (!holds)
        throw Broken(otherwise);
}

void check(const std::string& subject, const std::string& promise,
           const std::function<void()>& work) {
    enter_stage("here");
    report_result(subject, promise, "", true);
    std::string fault;
    try {
        work();
    } catch (const Broken& broken) {
        fault = broken.what();
    } catch (const std::exception& exception) {
        fault = std::string("throws '") + exception.what() + "'";
    } catch (...) {
        fault = "throws an exception";
    }
    report_result(subject, promise, fault, false);
}

void check_file(const std::vector<std::string>& arguments) {
    checked_file = platform::to_path(arguments.at(0));
    register_plugin(checked_file);
    fs::current_path(platform::to_path(arguments.at(1)));
    platform::hide_display();
    Patient patient(checked_file);
    check_texts(patient);
    bool is_ready = false;
    check(PLUGIN, "initialises", [&] {
        is_ready = patient.initialize();
        expect(is_ready, "initialize returns false on this machine");
    });
    if (!is_ready)
        return;
    for (const Service& service : SERVICES)
        if (patient.entry_point<void(void**)>(service.entry_point) != nullptr)
            check_service(patient, service);
    check(PLUGIN, "shuts down", [&] { patient.shutdown(); });
}

} // namespace tool
