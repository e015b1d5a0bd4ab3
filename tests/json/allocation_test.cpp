// SPDX-License-Identifier: MIT
// Every request for memory fails once, and nothing may leak or be used after its end.
#include "json_testing.h"

#include "tracking_allocator.h"

#include <gtest/gtest.h>

#include <functional>

using namespace quillon;
using namespace json_testing;

namespace {

// Long strings, long and deep containers: every kind of block is asked for.
std::string sample_text() {
    std::string list = "[0";
    for (int i = 1; i < 200; ++i)
        list.append(",").append(std::to_string(i)).append(".5");
    std::string members;
    for (int i = 0; i < 70; ++i)
        members.append("\"key").append(std::to_string(i)).append("\":[[{\"a\":0}]],");
    const std::string repeated = "\"repeated\":{" + members + "\"key3\":[]},";
    return "{\"list\":" + list + "]," + members + repeated + "\"text\":\"" +
           std::string(9000, 'x') + "\\n\",\"deep\":" + std::string(60, '[') +
           std::string(60, ']') + "}";
}

const std::string SAMPLE = sample_text();
constexpr cson_read_options DEEP_OPTIONS{100, 0};
constexpr cson_write_options DEEP_WRITING{0, 100};

// Stores a value with an operation that owns it on success, or releases it.
template <typename Store>
int store(cson_value* made, Store operation) {
    if (made == nullptr)
        return cson_AllocError;
    const int code = operation(made);
    if (code != cson_OK)
        cson_value_release(made);
    return code;
}

int build_by_hand() {
    const Value root(cson_value_make_object());
    int code = root != nullptr ? cson_OK : cson_AllocError;
    for (int i = 1; i < 20 && code == cson_OK; ++i) {
        const std::string key(static_cast<std::size_t>(i), 'k');
        cson_object* object = cson_value_object(root.get());
        code = store(cson_value_make_array(), [&](cson_value* made) {
            return cson_object_put_text(object, key.c_str(), made);
        });
        cson_array* array = cson_value_array(cson_object_get_text(object, key.c_str()));
        for (int j = 1; j < 20 && code == cson_OK; ++j)
            code = store(cson_value_from_int(j),
                         [&](cson_value* made) { return cson_array_push(array, made); });
    }
    return code;
}

int combine() {
    const Outcome a = read_whole("{\"repeated\":{\"b\":{\"c\":1}},\"z\":0}");
    const Outcome b = read_whole(SAMPLE, DEEP_OPTIONS); // has tables at two levels
    if (a.code != cson_OK || b.code != cson_OK)
        return cson_AllocError;
    return cson_object_combine(cson_value_object(a.value.get()), cson_value_object(b.value.get()),
                               0);
}

int take_arguments() {
    const char* const arguments[] = {"-a=x", "--b=-1.5", "-c", "-d=7x", "-e=-12", "-f=", "-g=text"};
    cson_object* made = nullptr;
    std::uint32_t count = 99;
    const int code = cson_object_from_args(7, arguments, &made, &count);
    EXPECT_LE(count, 7u) << "set also without memory for the object";
    cson_release_object(made);
    return code;
}

int write(const cson_value* value) {
    cson_buffer buffer;
    const int code = cson_write_buffer(value, &buffer, &DEEP_WRITING);
    cson_buffer_reserve_bytes(&buffer, 0);
    return code;
}

// Each has to fail with AllocError as often as one of its requests is refused, then succeed.
TEST(FailingMemory, NothingLeaks) {
    const Value sample = read_whole(SAMPLE, DEEP_OPTIONS).value;

    const struct {
        const char* name;
        std::function<int()> attempt;
    } rows[] = {{"read bytewise", [] { return read_bytewise(SAMPLE, DEEP_OPTIONS).code; }},
                {"read whole", [] { return read_whole(SAMPLE, DEEP_OPTIONS).code; }},
                {"copy",
                 [&] {
                     const Value copy(cson_value_copy(sample.get()));
                     return copy != nullptr ? cson_OK : cson_AllocError;
                 }},
                {"combine", combine},
                {"write", [&] { return write(sample.get()); }},
                {"build by hand", build_by_hand},
                {"arguments", take_arguments}};

    for (const auto& [name, attempt] : rows) {
        TrackingAllocator allocator;
        int code = cson_AllocError;
        for (std::size_t number = 1; code != cson_OK; ++number) {
            allocator.fail_from(number);
            code = attempt();
            allocator.fail_no_more();
            ASSERT_EQ("", allocator.report()) << name << ", request " << number;
            ASSERT_TRUE(code == cson_OK || code == cson_AllocError) << name << ": " << code;
        }
    }
}

TEST(Allocator, EveryBlockHasItsTag) {
    if (sizeof(void*) != 8)
        GTEST_SKIP() << "told for 64-bit systems";
    const TrackingAllocator allocator;
    cson_object* object = cson_value_object(cson_value_make_object());
    cson_object_put_text(object, "key", cson_value_from_int(5));
    cson_object_put_text(object, "other", cson_value_from_double(5));
    cson_object_put_text(object, "list", cson_value_make_array());
    cson_array_push(cson_value_array(cson_object_get_text(object, "list")),
                    cson_value_from_text("ab", 2));
    cson_buffer buffer;
    cson_buffer_reserve_bytes(&buffer, 10);
    EXPECT_EQ("cson_buffer::mem: 10\ncson_kvp: 24\ncson_kvp: 24\ncson_kvp: 24\n"
              "cson_kvp_list_reserve: 48\ncson_value:array: 40\ncson_value:double: 32\n"
              "cson_value:int: 28\ncson_value:object: 40\ncson_value:string: 31\n"
              "cson_value:string: 32\ncson_value:string: 33\ncson_value:string: 34\n"
              "cson_value_list_reserve: 56\n",
              allocator.report());
    cson_release_object(object);
    cson_buffer_reserve_bytes(&buffer, 0);
}

} // namespace
