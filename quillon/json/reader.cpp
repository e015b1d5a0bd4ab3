#include "quillon/json/bulk.h"
#include "quillon/json/parser.h"
#include "quillon/json/tree_builder.h"

#include <algorithm>
#include <array>

namespace quillon {
namespace {

// The library's codes for the parser's.
constexpr std::array<int, 11> library_codes = {
    cson_OK,
    cson_Parse_INVALID_CHAR,
    cson_Parse_INVALID_KEYWORD,
    cson_Parse_INVALID_ESCAPE_SEQUENCE,
    cson_Parse_INVALID_UNICODE_SEQUENCE,
    cson_Parse_INVALID_NUMBER,
    cson_Parse_NESTING_DEPTH_REACHED,
    cson_Parse_UNBALANCED_COLLECTION,
    cson_Parse_EXPECTED_KEY,
    cson_Parse_EXPECTED_COLON,
    cson_AllocError,
};

// Counts lines and columns over bytes of which the last may be the offending one.
void count_positions(cson_read_info& info, const unsigned char* bytes, std::uint32_t count,
                     bool failed) {
    const unsigned char* end = bytes + count;
    const auto feeds = static_cast<std::uint32_t>(std::count(bytes, end, '\n'));
    const unsigned char* line = end;
    while (feeds != 0 && line[-1] != '\n')
        --line;
    info.length += count;
    info.line += feeds;
    info.column = feeds != 0 ? static_cast<std::uint32_t>(end - line) : info.column + count;
    if (failed && bytes[count - 1] != '\n')
        --info.column;
}

// One reading of a tree.
class reading {
public:
    reading(const cson_read_options* options, cson_read_info* info) : report(info) {
        if (report != nullptr)
            report->error_code = 0;
        const cson_read_options used = options != nullptr ? *options : cson_read_options();
        cson_push_parser_config config;
        cson_push_parser_init_config(&config);
        config.callback = cson_tree_builder::on_event;
        config.context = &builder;
        config.depth = used.max_depth;
        config.allow_comments = used.allow_comments;
        parser = cson_push_parser_new(&config);
    }

    reading(const reading&) = delete;
    reading& operator=(const reading&) = delete;

    ~reading() { cson_push_parser_free(parser); }

    bool is_ready() const { return parser != nullptr; }

    // Takes one byte by the parser's public road; a code.
    int step(unsigned char byte) {
        const bool failed = cson_push_parser_step(parser, byte) == 0;
        return account(&byte, 1, failed);
    }

    // Takes a block; a code.
    int feed(const unsigned char* bytes, std::uint32_t count) {
        bool failed = false;
        const std::uint32_t used = cson_feed(*parser, builder, bytes, count, failed);
        return account(bytes, used, failed);
    }

    // Ends the reading, which the input's end or `code` stopped.
    int finish(int code, cson_value** out) {
        if (report != nullptr) {
            report->total_key_count = builder.key_count;
            report->total_value_count = builder.value_count;
        }
        if (code != cson_OK)
            return code;
        if (cson_push_parser_finish(parser) == 0)
            return failure_code();
        cson_value* root = builder.take_root();
        if (root == nullptr)
            return cson_UnknownError;
        *out = root;
        return cson_OK;
    }

private:
    int account(const unsigned char* bytes, std::uint32_t count, bool failed) {
        if (report != nullptr)
            count_positions(*report, bytes, count, failed);
        if (!failed)
            return cson_OK;
        const int code = failure_code();
        if (report != nullptr)
            report->error_code = static_cast<std::uint32_t>(code);
        return code;
    }

    int failure_code() const {
        const auto error = static_cast<std::size_t>(cson_push_parser_error(parser));
        if (error != cson_push_no_error)
            return error < library_codes.size() ? library_codes[error] : cson_InternalError;
        return builder.error != cson_OK ? builder.error : cson_InternalError;
    }

    cson_tree_builder builder;
    cson_push_parser* parser;
    cson_read_info* report;
};

int step_through(reading& work, cson_reader reader, void* state) {
    for (;;) {
        unsigned char byte = 0;
        std::uint32_t count = 1;
        const int read_code = reader(state, &byte, &count);
        if (read_code != cson_OK || count == 0)
            return read_code;
        const int code = work.step(byte);
        if (code != cson_OK)
            return code;
    }
}

int feed_stream(reading& work, std::FILE* stream) {
    std::array<unsigned char, 16384> block;
    for (;;) {
        const std::size_t count = std::fread(block.data(), 1, block.size(), stream);
        const int code = work.feed(block.data(), static_cast<std::uint32_t>(count));
        if (code != cson_OK)
            return code;
        if (count < block.size())
            return std::ferror(stream) != 0 ? cson_IOError : cson_OK;
    }
}

} // namespace

int cson_read(cson_value** out, cson_reader reader, void* state, const cson_read_options* options,
              cson_read_info* info) {
    if (out == nullptr || reader == nullptr)
        return cson_ArgError;
    reading work(options, info);
    if (!work.is_ready())
        return cson_AllocError;
    return work.finish(step_through(work, reader, state), out);
}

int cson_read_stream(cson_value** out, std::FILE* stream, const cson_read_options* options,
                     cson_read_info* info) {
    if (out == nullptr || stream == nullptr)
        return cson_ArgError;
    reading work(options, info);
    if (!work.is_ready())
        return cson_AllocError;
    return work.finish(feed_stream(work, stream), out);
}

int cson_read_path(cson_value** out, const char* path, const cson_read_options* options,
                   cson_read_info* info) {
    if (out == nullptr || path == nullptr)
        return cson_ArgError;
    std::FILE* stream = std::fopen(path, "r");
    if (stream == nullptr)
        return cson_IOError;
    const int code = cson_read_stream(out, stream, options, info);
    std::fclose(stream);
    return code;
}

int cson_read_text(cson_value** out, const char* text, std::uint32_t length,
                   const cson_read_options* options, cson_read_info* info) {
    if (out == nullptr || text == nullptr)
        return cson_ArgError;
    if (length < 2 || *text == 0)
        return cson_RangeError;
    reading work(options, info);
    if (!work.is_ready())
        return cson_AllocError;
    const int code = work.feed(reinterpret_cast<const unsigned char*>(text), length);
    return work.finish(code, out);
}

int cson_read_buffer(cson_value** out, const cson_buffer* buffer, const cson_read_options* options,
                     cson_read_info* info) {
    if (out == nullptr || buffer == nullptr || buffer->mem == nullptr || buffer->used == 0)
        return cson_ArgError;
    return cson_read_text(out, reinterpret_cast<const char*>(buffer->mem), buffer->used, options,
                          info);
}

} // namespace quillon
