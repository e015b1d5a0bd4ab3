// JSON text by single steps, by the block, and in pieces: all must come to the same.
#include "check.h"

#include "quillon/json/parser.h"
#include "quillon/json/containers.h"
#include "quillon/json/writer.h"

#include <cstdint>
#include <string>
#include <string_view>

using namespace quillon;

namespace {

int read_one(void* state, void* destination, std::uint32_t* count) {
    auto& rest = *static_cast<std::string_view*>(state);
    *count = rest.empty() ? 0 : 1;
    if (!rest.empty())
        *static_cast<char*>(destination) = rest.front();
    rest.remove_prefix(*count);
    return cson_OK;
}

std::string written(const cson_value* value) {
    cson_buffer buffer;
    cson_write_options options;
    options.max_depth = 65535;
    const int code = cson_write_buffer(value, &buffer, &options);
    std::string text = std::to_string(code);
    if (code == cson_OK)
        text.assign(reinterpret_cast<const char*>(buffer.mem), buffer.used);
    cson_buffer_reserve_bytes(&buffer, 0);
    return text;
}

// Feeds pieces of `size` bytes; gives the bytes used, and the tree's text if there is one.
std::uint32_t feed_pieces(std::string_view text, const cson_read_options& options,
                          std::uint32_t size, std::string& tree) {
    cson_tree_builder builder;
    cson_push_parser_config config;
    cson_push_parser_init_config(&config);
    config.callback = cson_tree_builder::on_event;
    config.context = &builder;
    config.depth = options.max_depth;
    config.allow_comments = options.allow_comments;
    cson_push_parser* parser = cson_push_parser_new(&config);
    std::uint32_t used = 0;
    bool failed = false;
    while (used < text.size() && !failed) {
        const std::string piece(text.substr(used, size)); // its end is watched
        used += cson_feed(*parser, builder, reinterpret_cast<const unsigned char*>(piece.data()),
                          static_cast<std::uint32_t>(piece.size()), failed);
    }
    if (!failed && cson_push_parser_finish(parser) != 0) {
        cson_value* root = builder.take_root();
        tree = root != nullptr ? written(root) : "";
        cson_value_release(root);
    }
    cson_push_parser_free(parser);
    return used;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3)
        return 0;
    const cson_read_options options{static_cast<std::uint16_t>(data[0] % 32),
                                    static_cast<std::int8_t>(data[1] % 2)};
    const std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    const auto length = static_cast<std::uint32_t>(text.size());
    if (length < 2 || text[0] == 0)
        return 0;

    cson_value* whole = nullptr;
    cson_read_info whole_info;
    const int whole_code = cson_read_text(&whole, text.data(), length, &options, &whole_info);
    cson_value* stepped = nullptr;
    cson_read_info stepped_info;
    std::string_view rest = text;
    const int stepped_code = cson_read(&stepped, read_one, &rest, &options, &stepped_info);

    check(whole_code == stepped_code, "both roads give one code");
    check(whole_info.line == stepped_info.line, "both roads end in one line");
    check(whole_info.column == stepped_info.column, "both roads end in one column");
    check(whole_info.length == stepped_info.length, "both roads use as many bytes");
    check(whole_info.total_key_count == stepped_info.total_key_count, "as many keys");
    check(whole_info.total_value_count == stepped_info.total_value_count, "as many values");
    const std::string tree = whole != nullptr ? written(whole) : "";
    check(tree == (stepped != nullptr ? written(stepped) : ""), "both roads make one tree");

    std::string piecewise;
    const std::uint32_t used = feed_pieces(text, options, 1 + data[1] / 2 % 16, piecewise);
    check(used == whole_info.length, "pieces use as many bytes");
    check(piecewise == tree, "pieces make the same tree");
    cson_value_release(whole);
    cson_value_release(stepped);
    return 0;
}
