// Documents as an engine meets them, made in code: the same bytes in every run.
#pragma once

#include <string>
#include <vector>

struct Document {
    const char* name;
    std::string text;
};

// Coordinates with all their digits, a mesh with short numbers, dialogue lines with escapes and
// accents, a list of entities, and indented settings; 0.5 to 3 MB each.
std::vector<Document> make_documents();
