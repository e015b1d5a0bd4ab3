# Doxygen's filter for the headers: turns the comments of the house into those that Doxygen reads.
#
# A comment on the lines before a declaration documents it, and all that follow up to the next empty line.
# A comment behind a declaration documents that one. The first comment of a file documents the file.
# A comment with an empty line or a pragma after it is a heading, which Doxygen does not see.

{ line[NR] = $0 }

function is_comment(i) { return line[i] ~ /^[ \t]*\/\/( |$)/ && line[i] !~ /NOLINT|SPDX/ }
function is_empty(i) { return i > NR || line[i] ~ /^[ \t]*$/ }

# The number of braces that the line opens, less those that it closes.
function opened(text,   copy) {
    copy = text
    sub(/\/\/.*/, "", copy)
    return gsub(/\{/, "", copy) - gsub(/\}/, "", copy)
}

# The last line of the paragraph from i on, or 0 if no other than the first declaration lacks a comment.
function end_of_group(i,   depth, count, ends) {
    for (; !is_empty(i) && !is_comment(i); ++i) {
        depth += opened(line[i])
        if (depth < 0) break
        ends = line[i] ~ /[;}][ \t]*(\/\/.*)?$/
        if (depth == 0 && ends && (count == 0 || line[i] !~ /\/\//)) ++count
        if (depth > 0 && line[i] ~ /^[ \t]*(class|struct|enum|union|namespace|extern)[ \t]/) return 0
    }
    return count > 1 && depth <= 0 ? i - 1 : 0
}

# One line of a comment; a line that ends a sentence ends there on the page too.
function documented(text) {
    sub(/\/\//, "///", text)
    return text ~ /[.:;]$/ ? text "  " : text
}

function trailing(text) {
    if (text !~ /^[ \t]*\/\// && text ~ /[;,{})] +\/\/ / && text !~ /\/\/ (namespace|NOLINT)/)
        sub(/\/\/ /, "///< ", text)
    else if (text ~ /^[ \t]*[A-Za-z_0-9]+( = [^,]*)? +\/\/ / && text !~ /NOLINT/)
        sub(/\/\/ /, "///< ", text)
    else if (text ~ / = default;$/)
        text = text " ///< As the compiler makes it."
    return text
}

# A mark takes the place of the empty line before it, so that Doxygen's messages have the right lines.
function mark(text) {
    if (count > 0 && out[count] ~ /^[ \t]*$/) out[count] = text
    else out[++count] = text
}

END {
    for (file_start = 1; file_start < NR && !is_comment(file_start); ++file_start);
    for (i = 1; i <= NR; ++i) {
        if (group_end > 0 && i > group_end) {
            mark("///@}")
            group_end = 0
            if (is_empty(i)) continue
        }
        if (!is_comment(i)) {
            out[++count] = i == file_end + 1 ? "/// @file" : trailing(line[i])
            continue
        }
        for (last = i; is_comment(last + 1); ++last);
        if (i == file_start) file_end = last # the guard, in whose place the file is named, comes next
        is_heading = i > file_start && (is_empty(last + 1) || line[last + 1] ~ /^[ \t]*([})]|#(pragma|include))/)
        if (i > file_start && !is_heading && (group_end = end_of_group(last + 1)) > 0) mark("///@{")
        for (; i <= last; ++i) out[++count] = is_heading ? line[i] : documented(line[i])
        --i
    }
    if (group_end > 0) mark("///@}")
    for (i = 1; i <= count; ++i) print out[i]
}
