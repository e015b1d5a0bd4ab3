// SPDX-License-Identifier: MIT
#include "documents.h"

#include <CLI/CLI.hpp>

namespace tool {
namespace {

// A hyphen is a dash unless it is escaped, and a dot or an apostrophe that begins a line a macro.
std::string roff(const std::string& text) {
    std::string escaped = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
    for (const char letter : text)
        escaped += letter == '-' ? "\\-" : letter == '\\' ? "\\e" : std::string(1, letter);
    return escaped;
}

// "--radius NUMBER" or "OUT".
std::string usage_of(const CLI::Option& option) {
    const bool has_value = !option.get_positional() && option.get_items_expected_max() > 0;
    // Without the checks, which follow a colon.
    const std::string type = option.get_type_name();
    return option.get_name() + (has_value ? " " + type.substr(0, type.find(':')) : "");
}

std::string synopsis_of(const CLI::App& command) {
    std::string line = "quillon " + command.get_name();
    for (const CLI::Option* option : command.get_options())
        if (option->get_positional())
            line +=
                option->get_required() ? " " + option->get_name() : " [" + option->get_name() + "]";
    return line + " [options]";
}

std::string section_of(const CLI::App& command) {
    std::string text =
        ".SS " + roff(synopsis_of(command)) + "\n" + roff(command.get_description()) + ".\n";
    for (const CLI::Option* option : command.get_options())
        text +=
            ".TP\n.B " + roff(usage_of(*option)) + "\n" + roff(option->get_description()) + "\n";
    if (!command.get_footer().empty())
        text += ".P\n" + roff(command.get_footer()) + "\n";
    return text;
}

std::string options_of(const CLI::App& command) {
    std::string words;
    for (const CLI::Option* option : command.get_options())
        for (const std::string& name : option->get_lnames())
            words += (words.empty() ? "--" : " --") + name;
    return words;
}

} // namespace

std::string man_page(const CLI::App& app) {
    std::string page = ".TH QUILLON 1 \"\" \"quillon " TOOL_VERSION "\"\n"
                       ".SH NAME\nquillon \\- " +
                       roff(app.get_description()) +
                       "\n.SH SYNOPSIS\n.B quillon\n.I command\n[arguments]\n.SH COMMANDS\n";
    for (const CLI::App* command : app.get_subcommands(nullptr))
        page += section_of(*command);
    return page + ".SH EXIT STATUS\n0 if all went well, 1 if something failed, 2 if the words were "
                  "not understood.\n";
}

std::string bash_completion(const CLI::App& app) {
    std::string names;
    std::string cases;
    for (const CLI::App* command : app.get_subcommands(nullptr)) {
        names += command->get_name() + " ";
        cases += "        " + command->get_name() + ") words='" + options_of(*command) + "' ;;\n";
    }
    return "_quillon() {\n"
           "    local words= word=${COMP_WORDS[COMP_CWORD]}\n"
           "    case ${COMP_WORDS[1]} in\n" +
           cases +
           "    esac\n"
           "    if [[ $COMP_CWORD -eq 1 ]]; then\n"
           "        words='" +
           names + options_of(app) +
           "'\n"
           "    elif [[ $word != -* ]]; then\n"
           "        words=\n"
           "    fi\n"
           "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
           "}\n"
           "complete -o default -F _quillon quillon\n";
}

} // namespace tool
