// Every request for memory fails once, and nothing may leak or be used after its end.
#include "json_testing.h"

#include "tracking_allocator.h"

#include <gtest/gtest.h>

#include <functional>

using namespace quillon;
using namespace json_testing;

namespace {

// Long strings, long and deep containers: every kind of block is asked for.
std::string sample() {
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

const cson_read_options deep_options{100, 0};

Value sample_tree() {
    return read_whole(sample(), deep_options).value;
}

using Attempt = std::function<int()>;

// `attempt` has to fail with AllocError as often as one of its requests is refused, then succeed.
void fail_every_request(const Attempt& attempt) {
    TrackingAllocator allocator;
    for (std::size_t number = 1;; ++number) {
        allocator.fail_from(number);
        const int code = attempt();
        allocator.fail_from(TrackingAllocator::never);
        ASSERT_EQ("", allocator.report()) << "request " << number;
        if (code == cson_OK)
            return;
        ASSERT_EQ(cson_AllocError, code) << "request " << number;
    }
}

TEST(FailingMemory, ReadBytewise) {
    const std::string text = sample();
    fail_every_request([&] { return read_bytewise(text, deep_options).code; });
}

TEST(FailingMemory, ReadWhole) {
    const std::string text = sample();
    fail_every_request([&] { return read_whole(text, deep_options).code; });
}

TEST(FailingMemory, Copy) {
    const Value original = sample_tree();
    fail_every_request([&] {
        const Value copy(cson_value_copy(original.get()));
        return copy != nullptr ? cson_OK : cson_AllocError;
    });
}

TEST(FailingMemory, Combine) {
    fail_every_request([] {
        const Outcome a = read_whole("{\"repeated\":{\"b\":{\"c\":1}},\"z\":0}");
        const Outcome b = read_whole(sample(), deep_options); // has tables at two levels
        if (a.code != cson_OK || b.code != cson_OK)
            return cson_AllocError + 0;
        return cson_object_combine(cson_value_object(a.value.get()),
                                   cson_value_object(b.value.get()), 0);
    });
}

TEST(FailingMemory, Write) {
    const Value original = sample_tree();
    cson_write_options options;
    options.max_depth = 100;
    fail_every_request([&] {
        cson_buffer buffer;
        const int code = cson_write_buffer(original.get(), &buffer, &options);
        cson_buffer_reserve_bytes(&buffer, 0);
        return code;
    });
}

TEST(FailingMemory, BuildByHand) {
    fail_every_request([] {
        const Value root(cson_value_make_object());
        int code = root != nullptr ? cson_OK : cson_AllocError;
        for (int i = 1; i < 20 && code == cson_OK; ++i) {
            Value array(cson_value_make_array());
            code = array != nullptr ? cson_OK : cson_AllocError;
            for (int j = 1; j < 20 && code == cson_OK; ++j) {
                Value number(cson_value_from_int(j));
                code = number == nullptr
                           ? int{cson_AllocError}
                           : cson_array_push(cson_value_array(array.get()), number.get());
                if (code == cson_OK)
                    number.release();
            }
            const std::string key(static_cast<std::size_t>(i), 'k');
            if (code == cson_OK)
                code =
                    cson_object_put_text(cson_value_object(root.get()), key.c_str(), array.get());
            if (code == cson_OK)
                array.release();
        }
        return code;
    });
}

TEST(FailingMemory, Arguments) {
    const char* const arguments[] = {"-a=x", "--b=-1.5", "-c", "-d=7x", "-e=-12", "-f=", "-g=text"};
    fail_every_request([&] {
        cson_object* made = nullptr;
        const int code = cson_object_from_args(7, arguments, &made, nullptr);
        cson_release_object(made);
        return code;
    });
}

TEST(Allocator, EveryBlockHasItsTag) {
    const TrackingAllocator allocator;
    cson_object* object = cson_value_object(cson_value_make_object());
    cson_object_put_text(object, "key", cson_value_from_int(5));
    cson_object_put_text(object, "other", cson_value_from_double(5));
    cson_object_put_text(object, "list", cson_value_make_array());
    cson_array_push(cson_value_array(cson_object_get_text(object, "list")),
                    cson_value_from_text("ab", 2));
    cson_buffer buffer;
    cson_buffer_reserve_bytes(&buffer, 10);
    EXPECT_EQ("cson_buffer::mem: 1 blocks, 10 bytes\ncson_kvp: 3 blocks, 72 bytes\n"
              "cson_kvp_list_reserve: 1 blocks, 56 bytes\ncson_value:array: 1 blocks, 40 bytes\n"
              "cson_value:double: 1 blocks, 32 bytes\ncson_value:int: 1 blocks, 28 bytes\n"
              "cson_value:object: 1 blocks, 40 bytes\ncson_value:string: 4 blocks, 130 bytes\n"
              "cson_value_list_reserve: 1 blocks, 64 bytes\n",
              allocator.report());
    cson_release_object(object);
    cson_buffer_reserve_bytes(&buffer, 0);
    EXPECT_EQ("", allocator.report());
}

} // namespace
