// SPDX-License-Identifier: MIT
#include "tool_run.h"

#include <gtest/gtest.h>
namespace fs = std::filesystem;

// A line "<!-- quotes FILE -->" promises that the fenced block after it is the whole of the file
// but for the line of the licence at its head.
TEST(Documents, QuotedExamplesAreTheFiles) {
    const std::string promise = "<!-- quotes ";
    int quotes = 0;
    std::vector<fs::path> pages = {SOURCE_FOLDER "/README.md"};
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(SOURCE_FOLDER "/docs"))
        if (entry.path().extension() == ".md")
            pages.push_back(entry.path());
    for (const fs::path& page : pages) {
        const std::string text = text_of(page);
        for (std::size_t at = text.find(promise); at != std::string::npos;
             at = text.find(promise, at + 1)) {
            const std::size_t name = at + promise.size();
            const std::string file = text.substr(name, text.find(' ', name) - name);
            const std::size_t begin = text.find('\n', text.find("```", name)) + 1;
            const std::size_t end = text.find("```\n", begin);
            const std::string quoted = text_of(fs::path(SOURCE_FOLDER) / file);
            const bool has_licence = quoted.substr(0, quoted.find('\n')).ends_with("MIT");
            EXPECT_EQ(quoted.substr(has_licence ? quoted.find('\n') + 1 : 0),
                      text.substr(begin, end - begin))
                << page << " quotes " << file;
            ++quotes;
        }
    }
    EXPECT_GE(quotes, 6);
}
