// SPDX-License-Identifier: MIT
// Documents as an engine meets them, made in code: the same bytes in every run.
#pragma once

#include <string>
#include <vector>

struct Document {
    const char* name;
    std::string text;
};

// Ten kinds, 0.5 to 3 MB each.
//
// Numbers: coordinates with all their digits, a mesh with short ones. Text: dialogue with accents
// and some escapes, posts, short escapes, \u escapes. Objects: entities, a catalogue of nested
// tables, indented settings. Deep: containers of one entry.
std::vector<Document> make_documents();
