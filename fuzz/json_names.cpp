// Member paths and command-line arguments, which also combine and detach.
#include "check.h"

#include "quillon/json/containers.h"

#include <cstdint>
#include <string>
#include <vector>

using namespace quillon;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Terminated texts, one behind the other.
    std::vector<std::string> texts(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0)
            texts.emplace_back();
        else
            texts.back() += static_cast<char>(data[i]);
    }
    std::vector<const char*> arguments;
    for (const std::string& text : texts)
        arguments.push_back(text.c_str());

    const auto argc = static_cast<int>(arguments.size());
    cson_object* object = nullptr;
    std::uint32_t count = 0;
    check(cson_object_from_args(argc, arguments.data(), &object, &count) == cson_OK, "arguments");
    check(count <= texts.size() && object->list.count <= count, "a member for each argument");
    cson_value* inner = cson_value_copy(cson_value_of_object(object));
    cson_object_put_text(object, "a", inner);
    for (const std::string& text : texts) {
        cson_value* by_path = nullptr;
        const int code = cson_object_path(object, &by_path, text.c_str(), '/');
        check((code == cson_OK) == (by_path != nullptr), "a path gives a value or a code");
        cson_object_path_marked(object, nullptr, text.c_str());
        cson_value_release(cson_object_detach(cson_value_object(inner), text.c_str()));
    }
    cson_object_combine(object, cson_value_object(inner), static_cast<int>(size % 4));
    cson_release_object(object);
    return 0;
}
