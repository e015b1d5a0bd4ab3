// SPDX-License-Identifier: MIT
#include "quillon/json/allocator.h"
#include "quillon/json/document_reader.h"
#include "quillon/json/parser.h"
#include "quillon/json/tree_builder.h"
#include "quillon/platform/files.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

namespace quillon {

using namespace json;

namespace {

// --- One byte at a time ------------------------------------------------------------------------

// The tree of a push parser, and the code of the last event.
struct Receiver {
    TreeBuilder builder;
    int code = cson_OK;
};

int build(TreeBuilder& builder, int event, const cson_push_data* data) {
    switch (event) {
    case cson_event_array_begins:
        return builder.begin_container(cson_kind_array);
    case cson_event_object_begins:
        return builder.begin_container(cson_kind_object);
    case cson_event_array_ends:
    case cson_event_object_ends:
        return builder.end_container();
    case cson_event_integer:
        return builder.integer(data->integer);
    case cson_event_float:
        return builder.number(data->number);
    case cson_event_string:
        return builder.string(data->text, data->length);
    case cson_event_null:
        return builder.constant(cson_value_null_constant());
    case cson_event_true:
        return builder.constant(cson_value_true());
    case cson_event_false:
        return builder.constant(cson_value_false());
    case cson_event_key:
        return builder.key(data->text, data->length);
    default:
        return cson_InternalError;
    }
}

int receive(void* context, int event, const cson_push_data* data) {
    auto& receiver = *static_cast<Receiver*>(context);
    receiver.code = build(receiver.builder, event, data);
    return receiver.code == cson_OK ? 1 : 0;
}

struct ParserDeleter {
    void operator()(cson_push_parser* parser) const { cson_push_parser_free(parser); }
};

using Parser = std::unique_ptr<cson_push_parser, ParserDeleter>;

Parser make_parser(Receiver& receiver, const cson_read_options* options) {
    const cson_read_options used = options != nullptr ? *options : cson_read_options();
    cson_push_parser_config config;
    cson_push_parser_init_config(&config);
    config.callback = receive;
    config.context = &receiver;
    config.depth = used.max_depth;
    config.allow_comments = used.allow_comments != 0 ? 1 : 0;
    return Parser(cson_push_parser_new(&config));
}

// The library's code for a failure: the parser's, else that of the last event.
int failure_code(const cson_push_parser& parser, const Receiver& receiver) {
    constexpr int first = cson_Parse_INVALID_CHAR - int{cson_push_invalid_character};
    static_assert(first + cson_push_expected_colon == cson_Parse_EXPECTED_COLON);
    if (parser.error == cson_push_out_of_memory)
        return cson_AllocError;
    if (parser.error != cson_push_no_error)
        return first + parser.error;
    return receiver.code != cson_OK ? receiver.code : cson_InternalError;
}

// Feeds the parser from the reader up to the end of the input or the first failure.
int step_through(cson_push_parser& parser, const Receiver& receiver, cson_reader reader,
                 void* state, cson_read_info& info) {
    for (;;) {
        unsigned char byte = 0;
        std::uint32_t count = 1;
        const int read_code = reader(state, &byte, &count);
        if (read_code != cson_OK || count == 0)
            return read_code;
        ++info.length;
        if (byte == '\n') {
            ++info.line;
            info.column = 0;
        }
        if (cson_push_parser_step(&parser, byte) == 0) {
            const int code = failure_code(parser, receiver);
            info.error_code = static_cast<std::uint32_t>(code);
            return code;
        }
        info.column += byte != '\n' ? 1 : 0;
    }
}

int read_by_steps(cson_value** out, cson_reader reader, void* state,
                  const cson_read_options* options, cson_read_info* info) {
    Receiver receiver;
    const Parser parser = make_parser(receiver, options);
    if (parser == nullptr)
        return cson_AllocError;
    cson_read_info used = info != nullptr ? *info : cson_read_info();
    used.error_code = 0;
    const int code = step_through(*parser, receiver, reader, state, used);
    used.total_key_count = receiver.builder.key_count;
    used.total_value_count = receiver.builder.value_count();
    if (info != nullptr)
        *info = used;
    if (code != cson_OK)
        return code;
    if (cson_push_parser_finish(parser.get()) == 0)
        return failure_code(*parser, receiver);
    cson_value* root = receiver.builder.take_root();
    if (root == nullptr) // white space and comments alone
        return cson_UnknownError;
    *out = root;
    return cson_OK;
}

// --- Whole texts -------------------------------------------------------------------------------

struct Text {
    const unsigned char* at;
    std::uint32_t length;
};

void count_positions(cson_read_info& info, Text text) {
    const unsigned char* end = text.at + text.length;
    const auto feeds = static_cast<std::uint32_t>(std::count(text.at, end, '\n'));
    const unsigned char* line = end;
    while (feeds != 0 && line[-1] != '\n')
        --line;
    info.length += text.length;
    info.line += feeds;
    info.column = feeds != 0 ? static_cast<std::uint32_t>(end - line) : info.column + text.length;
}

// False, with nothing changed, for a text that only the push parser can decide.
bool read_plain(cson_value** out, Text text, const cson_read_options* options,
                cson_read_info* info) {
    const std::uint32_t limit = (options != nullptr ? *options : cson_read_options()).max_depth;
    TreeBuilder builder;
    // No limit is a limit of 1, as it is for the push parser.
    if (!read_document(builder, text.at, text.length, std::max(limit, 1u)))
        return false;
    if (info != nullptr) {
        count_positions(*info, text);
        info->error_code = 0;
        info->total_key_count = builder.key_count;
        info->total_value_count = builder.value_count();
    }
    *out = builder.take_root();
    return true;
}

int read_from_text(void* state, void* destination, std::uint32_t* count) {
    auto& rest = *static_cast<Text*>(state);
    *count = std::min(*count, rest.length);
    std::memcpy(destination, rest.at, *count);
    rest.at += *count;
    rest.length -= *count;
    return cson_OK;
}

// --- Streams -----------------------------------------------------------------------------------

int read_from_stream(void* state, void* destination, std::uint32_t* count) {
    auto* stream = static_cast<std::FILE*>(state);
    *count = static_cast<std::uint32_t>(std::fread(destination, 1, *count, stream));
    return *count == 0 && std::ferror(stream) != 0 ? cson_IOError : cson_OK;
}

// Bytes up to the end of a stream; 0 for one that can't seek, or is too long for a text.
std::uint32_t bytes_left(std::FILE* stream, long position) {
    if (position < 0 || std::fseek(stream, 0, SEEK_END) != 0)
        return 0;
    const std::int64_t left = std::int64_t{std::ftell(stream)} - position;
    const bool has_returned = std::fseek(stream, position, SEEK_SET) == 0;
    const bool fits = left > 0 && left < std::numeric_limits<std::uint32_t>::max();
    return has_returned && fits ? static_cast<std::uint32_t>(left) : 0;
}

// Reads a stream that can seek as one text. False, with the stream where it was, for all others.
bool read_ahead(cson_value** out, std::FILE* stream, const cson_read_options* options,
                cson_read_info* info) {
    const long position = std::ftell(stream);
    const std::uint32_t expected = bytes_left(stream, position);
    if (expected == 0)
        return false;
    // The byte more is never there but in a file that grows meanwhile.
    const std::size_t asked = std::size_t{expected} + 1;
    const Block block = make_block(asked, "cson_file");
    const std::size_t count = block != nullptr ? std::fread(block.get(), 1, asked, stream) : 0;
    const bool is_whole = count < asked && std::feof(stream) != 0;
    if (is_whole &&
        read_plain(out, {block.get(), static_cast<std::uint32_t>(count)}, options, info))
        return true;
    std::clearerr(stream);
    std::fseek(stream, position, SEEK_SET);
    return false;
}

} // namespace

int cson_read(cson_value** out, cson_reader reader, void* state, const cson_read_options* options,
              cson_read_info* info) {
    if (out == nullptr || reader == nullptr)
        return cson_ArgError;
    return read_by_steps(out, reader, state, options, info);
}

int cson_read_stream(cson_value** out, std::FILE* stream, const cson_read_options* options,
                     cson_read_info* info) {
    if (out == nullptr || stream == nullptr)
        return cson_ArgError;
    if (read_ahead(out, stream, options, info))
        return cson_OK;
    return read_by_steps(out, read_from_stream, stream, options, info);
}

int cson_read_path(cson_value** out, const char* path, const cson_read_options* options,
                   cson_read_info* info) {
    if (out == nullptr || path == nullptr)
        return cson_ArgError;
    std::FILE* stream = platform::open_file(path, "rb");
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
    Text rest = {reinterpret_cast<const unsigned char*>(text), length};
    if (read_plain(out, rest, options, info))
        return cson_OK;
    return read_by_steps(out, read_from_text, &rest, options, info);
}

int cson_read_buffer(cson_value** out, const cson_buffer* buffer, const cson_read_options* options,
                     cson_read_info* info) {
    if (out == nullptr || buffer == nullptr || buffer->mem == nullptr || buffer->used == 0)
        return cson_ArgError;
    return cson_read_text(out, reinterpret_cast<const char*>(buffer->mem), buffer->used, options,
                          info);
}

} // namespace quillon
