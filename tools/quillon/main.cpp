// SPDX-License-Identifier: MIT
#include "child.h"
#include "command.h"
#include "documents.h"
#include "nearest_word.h"
#include "platform.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>

namespace {

using namespace tool;

constexpr const char* VERSION = "quillon " TOOL_VERSION;

// "quillon" and the name of the command.
std::string full_name(const CLI::App& app) {
    return app.get_parent() == nullptr ? app.get_name() : "quillon " + app.get_name();
}

std::vector<std::string> known_words(const CLI::App& app) {
    std::vector<std::string> words;
    for (const CLI::App* command : app.get_subcommands(nullptr))
        words.push_back(command->get_name());
    for (const CLI::Option* option : app.get_options())
        words.push_back(option->get_name());
    return words;
}

ExitCode misuse(const CLI::App& app, const std::string& what) {
    std::cerr << full_name(app) << ": " << what << "\nSee '" << full_name(app) << " --help'.\n";
    return MISUSED;
}

ExitCode unknown_word(const CLI::App& app, const std::string& word) {
    const std::string nearest = nearest_word(word, known_words(app));
    return misuse(app, "unknown word '" + word + "'" +
                           (nearest.empty() ? "" : "; did you mean '" + nearest + "'?"));
}

// The first word if it has to be a command and is not.
const char* misspelt_command(int argc, char** argv) {
    if (argc < 2 || argv[1][0] == '-')
        return nullptr;
    const auto is_meant = [argv](const Command& command) {
        return command.name == std::string_view(argv[1]);
    };
    return std::ranges::any_of(commands(), is_meant) ? nullptr : argv[1];
}

ExitCode run(const std::string& name, const Action& action) {
    try {
        return action();
    } catch (const std::exception& failure) {
        std::cerr << name << ": " << failure.what() << "\n";
        return FAILED;
    }
}

// What the build installs beside the program; `quillon help --man` and `--completion`.
bool print_document(const CLI::App& app, int argc, char** argv) {
    if (argc != 3 || argv[1] != std::string_view("help"))
        return false;
    const std::string_view document = argv[2];
    if (document == "--man")
        std::cout << man_page(app);
    else if (document == "--completion")
        std::cout << bash_completion(app);
    return document == "--man" || document == "--completion";
}

ExitCode parse_and_run(int argc, char** argv) {
    CLI::App app("Looks after plug-ins and pictures through the quillon library.", "quillon");
    app.set_version_flag("--version", VERSION);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // a path may begin with a slash everywhere
    std::vector<std::pair<CLI::App*, Action>> actions;
    for (const Command& command : commands()) {
        CLI::App* arguments = app.add_subcommand(command.name, command.summary);
        arguments->set_version_flag("--version", VERSION);
        actions.emplace_back(arguments, command.declare(*arguments));
    }

    if (print_document(app, argc, argv))
        return SUCCESS;
    if (const char* word = misspelt_command(argc, argv))
        return unknown_word(app, word);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        app.exit(request);
        return SUCCESS;
    } catch (const CLI::ParseError& error) {
        const auto parsed = app.get_subcommands();
        const CLI::App& culprit = parsed.empty() ? app : *parsed.front();
        const std::vector<std::string> words = culprit.remaining();
        return words.empty() ? misuse(culprit, error.what()) : unknown_word(culprit, words.front());
    }
    const auto chosen =
        std::ranges::find_if(actions, [](const auto& entry) { return entry.first->parsed(); });
    return run(full_name(*chosen->first), chosen->second);
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words = platform::begin_program(argc, argv);
    if (argc > 1 && words[1] == CHILD_ARGUMENT)
        return run_as_child({words.begin() + 2, words.end()});
    std::vector<char*> pointers(words.size());
    std::ranges::transform(words, pointers.begin(), [](std::string& word) { return word.data(); });
    const ExitCode code = parse_and_run(static_cast<int>(pointers.size()), pointers.data());
    if (!std::cout.flush()) {
        std::cerr << "quillon: cannot write to the standard output\n";
        return FAILED;
    }
    return code;
}
