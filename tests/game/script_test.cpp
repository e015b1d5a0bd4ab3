// SPDX-License-Identifier: MIT
#include "script.h"

#include "home.h"

#include <gmock/gmock.h>

#include <fstream>
#include <stdexcept>

using namespace lantern;
using testing::HasSubstr;

namespace {

std::string path_of(const char* name) {
    return testing::TempDir() + name;
}

TEST(Script, ReadsBackWhatWasWritten) {
    Script script{2, {}};
    for (int i = 0; i < 500; ++i) {
        const auto lever = static_cast<std::int8_t>(i / 30 * 16 - 127);
        script.steps.push_back({Input{lever, 5, 1}, Input{-7, lever, 2}});
    }
    write_script(path_of("kept.script"), script);
    const Script again = read_script(path_of("kept.script"));
    EXPECT_EQ(script.players, again.players);
    EXPECT_EQ(script.steps, again.steps);
    EXPECT_EQ(Inputs{}, again.at(500)) << "after its end";
}

TEST(Script, WhatIsWrongIsNamed) {
    struct Row {
        const char* text;
        const char* reason;
    };

    for (const Row& row : {
             Row{"", "no script"},
             Row{"lantern-script 1\n", "no script"},
             Row{"lantern-script 77 1\n", "version 77 of the game, which is at 1"},
             Row{"lantern-script 1 3\n", "other than 1 or 2 players"},
             Row{"lantern-script 1 1\n5 0 0 0\n5 0 0\n", "run 2"},
             Row{"lantern-script 1 1\n5 0 0 0 9\n", "run 2"},
             Row{"lantern-script 1 1\n5 128 0 0\n", "run 1"},
             Row{"lantern-script 1 1\n5 0 0 256\n", "run 1"},
             Row{"lantern-script 1 1\n-5 0 0 0\n", "run 1"},
             Row{"lantern-script 1 1\n99999999999 0 0 0\n", "run 1"},
             Row{"lantern-script 1 2\n5 0 0 0\n", "run 1"},
         }) {
        std::ofstream(path_of("bad.script")) << row.text;
        try {
            read_script(path_of("bad.script"));
            ADD_FAILURE() << "no error for " << row.text;
        } catch (const std::runtime_error& error) {
            EXPECT_THAT(error.what(), HasSubstr("bad.script: "));
            EXPECT_THAT(error.what(), HasSubstr(row.reason)) << row.text;
        }
    }
    EXPECT_THROW(read_script(path_of("nowhere/at.all")), std::runtime_error);
    EXPECT_THROW(write_script(path_of("nowhere/at.all"), {}), std::runtime_error);
}

TEST(Island, HeightMapThatIsMissingOrOfAnotherSizeIsRefused) {
    EXPECT_THROW(Island(path_of("nowhere.pgm")), std::runtime_error);
    for (const char* text :
         {"", "P5\n256 256\n255\nshort", "P2\n256 256\n255\n", "P5\n16 16\n255\n"}) {
        std::ofstream(path_of("bad.pgm")) << text;
        EXPECT_THROW(Island(path_of("bad.pgm")), std::runtime_error) << text;
    }
}

} // namespace
