// SPDX-License-Identifier: MIT
#include "json_testing.h"

#include "tracking_allocator.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <utility>

using namespace quillon;
using namespace json_testing;

namespace {

cson_object* object(const Value& value) {
    return cson_value_object(value.get());
}

cson_array* array(const Value& value) {
    return cson_value_array(value.get());
}

TEST(Containers, GrowOneEntryBeforeTheyAreFull) {
    const TrackingAllocator allocator;
    const Value values(cson_value_make_array());
    for (const std::uint32_t capacity : {7, 7, 7, 7, 7, 7, 12, 12, 12, 12, 12, 22}) {
        EXPECT_EQ(cson_OK, cson_array_push(array(values), cson_value_true()));
        EXPECT_EQ(capacity, array(values)->list.capacity);
        EXPECT_EQ(nullptr, array(values)->list.items[capacity - 1]) << "zeroed";
    }
    for (const std::uint32_t capacity : {22, 23}) {
        EXPECT_EQ(cson_OK, cson_array_reserve_items(array(values), capacity));
        EXPECT_EQ(capacity, array(values)->list.capacity);
    }
    const Value members(cson_value_make_object());
    std::string key;
    for (const std::uint32_t capacity : {6, 6, 6, 6, 6, 10}) {
        cson_object_put_text(object(members), (key += 'k').c_str(), cson_value_true());
        EXPECT_EQ(capacity, object(members)->list.capacity);
    }
}

TEST(Array, StoringPastTheEndLeavesHoles) {
    const Value value(cson_value_make_array());
    EXPECT_EQ(cson_OK, cson_array_put(array(value), 10, cson_value_from_int(5)));
    EXPECT_EQ(11u, cson_array_count(array(value)));
    cson_value* item = cson_value_true();
    EXPECT_EQ(cson_OK, cson_array_at(array(value), 3, &item));
    EXPECT_EQ(nullptr, item);
    EXPECT_EQ(cson_RangeError, cson_array_at(array(value), 11, &item));
    const std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
    EXPECT_EQ(cson_RangeError, cson_array_put(array(value), most, cson_value_true()));
    EXPECT_EQ(cson_RangeError, cson_array_put(array(value), most - 1, cson_value_true()));
    EXPECT_EQ(cson_ArgError, cson_array_put(array(value), 0, nullptr));
    const Value copy(cson_value_copy(value.get()));
    EXPECT_EQ(text_of(value.get()), text_of(copy.get()));
    EXPECT_EQ(11u, array(copy)->list.capacity);
}

TEST(Array, ReplacingReleasesTheOldEntryLast) {
    const TrackingAllocator allocator;
    const Value value(cson_value_make_array());
    cson_value* inner = cson_value_make_array();
    cson_value* number = cson_value_from_int(5);
    cson_array_push(cson_value_array(inner), number);
    cson_array_push(array(value), inner);
    EXPECT_EQ(cson_OK, cson_array_put(array(value), 0, number)) << "lives by the old entry";
    EXPECT_EQ(cson_OK, cson_array_put(array(value), 0, number));
    EXPECT_EQ(1u, number->refcount);
    EXPECT_EQ("[5]", text_of(value.get()));
}

TEST(Object, BadArgumentsAndMissingKeys) {
    const Value value = tree("{\"\":1,\"a\":2}");
    EXPECT_EQ(nullptr, cson_object_find(object(value), "", nullptr)) << "though one is stored";
    EXPECT_EQ(cson_ArgError, cson_object_put_text(object(value), "", cson_value_true()));
    EXPECT_EQ(cson_ArgError, cson_object_drop(object(value), ""));
    EXPECT_EQ(cson_NotFoundError, cson_object_drop(object(value), "b"));
    EXPECT_EQ(nullptr, cson_object_detach(object(value), "b"));
    EXPECT_EQ(cson_ArgError, cson_object_put_string(object(value), nullptr, cson_value_true()));
    EXPECT_EQ(cson_ArgError, cson_object_walk_start(nullptr, nullptr));
    EXPECT_EQ(cson_ArgError, cson_object_combine(object(value), object(value), 0));
    EXPECT_EQ(cson_OK, cson_object_put_text(object(value), "a", nullptr)) << "null drops";
    EXPECT_EQ("{\"\":1}", text_of(value.get()));
    EXPECT_EQ(nullptr, object(value)->list.items[1]);
}

TEST(Object, KeysAndMembersOutliveTheirReading) {
    const TrackingAllocator allocator;
    Value first = tree("{\"key\":{\"a\":[1,\"text\"]},\"other\":2}");
    const Value second(cson_value_make_object());
    const cson_kvp* pair = cson_object_find(object(first), "key", nullptr);
    EXPECT_EQ(cson_OK, cson_object_put_string(object(second), cson_kvp_key_string(pair),
                                              cson_kvp_value(pair)));
    EXPECT_EQ(cson_ArgError, cson_object_combine(object(second), object(first), 0))
        << "the shared member would be combined with itself";
    EXPECT_EQ(cson_OK, cson_object_combine(object(second), object(first), cson_combine_flat));
    cson_value* detached = cson_object_detach(object(first), "other");
    EXPECT_EQ(1u, detached->refcount);
    first.reset();
    EXPECT_EQ("{\"key\":{\"a\":[1, \"text\"]}, \"other\":2}", text_of(second.get()));
}

TEST(Object, DetachedMemberBelongsToTheCaller) {
    const TrackingAllocator allocator;
    Value value = tree("{\"a\":[1,{\"k\":\"text\"}],\"b\":true,\"c\":null}");
    Value member(cson_object_detach(object(value), "a"));
    EXPECT_EQ(0u, member->refcount);
    EXPECT_EQ(cson_value_true(), cson_object_detach(object(value), "b"));
    cson_object_find(object(value), "c", nullptr)->value = nullptr;
    EXPECT_EQ(nullptr, cson_object_detach(object(value), "c"));
    EXPECT_EQ(0u, object(value)->list.count);
    value.reset();
    EXPECT_EQ("[1, {\"k\":\"text\"}]", text_of(member.get()));

    const std::size_t shared = allocator.blocks();
    const Value copy(cson_value_copy(member.get()));
    const std::size_t both = allocator.blocks();
    member.reset();
    EXPECT_EQ(both - shared, allocator.blocks()) << "the copy has no part of the reading's memory";
    EXPECT_EQ("[1, {\"k\":\"text\"}]", text_of(copy.get()));
}

TEST(Object, NullPairsAndNullKeysAreSkipped) {
    const TrackingAllocator allocator;
    const Value value = tree("{\"a\":1,\"b\":[2],\"c\":3,\"d\":4}");
    cson_kvp_list& list = object(value)->list;
    cson_kvp* second = std::exchange(list.items[1], nullptr);
    cson_value* key = std::exchange(list.items[3]->key, nullptr);
    EXPECT_EQ("{\"a\":1, \"c\":3, }", text_of(value.get())) << "commas count places";
    EXPECT_EQ(nullptr, cson_object_get_text(object(value), "d"));
    const Value copy(cson_value_copy(value.get()));
    EXPECT_EQ("{\"a\":1, \"c\":3}", text_of(copy.get()));
    EXPECT_EQ(4u, object(copy)->list.capacity);
    EXPECT_LT(cson_value_footprint(copy.get()), cson_value_footprint(value.get()));
    const Value combined = tree("{\"c\":5}");
    EXPECT_EQ(cson_OK, cson_object_combine(object(combined), object(value), 0));
    EXPECT_EQ("{\"c\":5, \"a\":1}", text_of(combined.get()));
    EXPECT_EQ(cson_OK, cson_object_combine(object(value), object(combined), 0));
    EXPECT_EQ(4u, list.count);
    list.items[1] = second;
    list.items[3]->key = key;
}

TEST(Object, Paths) {
    const std::string longest(127, 'n');
    const Value value = tree("{\"a\":{\"b\":1,\"o\":{}},\"" + longest + "\":2}");

    const struct {
        std::string path;
        char separator;
        int code;
    } rows[] = {{"a/b", '/', cson_OK},
                {"/a//b/", '/', cson_OK},
                {"a.o", '.', cson_OK},
                {"a/c", '/', cson_NotFoundError},
                {"a/b/c", '/', cson_NotFoundError},
                {"x", '/', cson_NotFoundError},
                {"", '/', cson_RangeError},
                {"///", '/', cson_RangeError},
                {"a", '\0', cson_RangeError},
                {longest, '/', cson_OK},
                {longest + "n", '/', cson_RangeError},
                {"a/" + longest + "n", '/', cson_RangeError}};

    for (const auto& row : rows) {
        cson_value* out = nullptr;
        EXPECT_EQ(row.code, cson_object_path(object(value), &out, row.path.c_str(), row.separator))
            << row.path;
        EXPECT_EQ(row.code == cson_OK, out != nullptr);
    }
    EXPECT_EQ(1, cson_value_int(cson_object_path_marked_value(object(value), ".a.b")));
    EXPECT_EQ(cson_RangeError, cson_object_path_marked(object(value), nullptr, "/"));
    EXPECT_EQ(cson_ArgError, cson_object_path_marked(object(value), nullptr, nullptr));
}

// What combining without descending comes to, pair by pair.
std::string combined_by_lookups(const Value& destination, const Value& source, int flags) {
    cson_object_walker walker;
    cson_object_walk_start(object(source), &walker);
    while (cson_kvp* pair = cson_object_walk_next(&walker))
        if ((flags & cson_combine_replace) != 0 ||
            cson_object_get_string(object(destination), cson_kvp_key_string(pair)) == nullptr)
            cson_object_put_string(object(destination), cson_kvp_key_string(pair), pair->value);
    return text_of(destination.get());
}

TEST(Object, CombinesFlatAsLookupsWould) {
    std::mt19937 engine(11);
    const TrackingAllocator allocator;
    for (int round = 0; round < 300; ++round) {
        std::string texts[2];
        for (std::string& text : texts) {
            text = "{";
            for (auto left = engine() % 150; left != 0; --left)
                text += (text.size() == 1 ? "\"" : ",\"") + std::string(engine() % 9, 'k') +
                        std::to_string(engine() % 80) + "\":" + std::to_string(left);
        }
        const int flags = cson_combine_flat | (round % 2 != 0 ? cson_combine_replace : 0);
        const Value destination = tree(texts[0] + "}");
        Value source = tree(texts[1] + "}");
        EXPECT_EQ(cson_OK, cson_object_combine(object(destination), object(source), flags));
        source.reset();
        ASSERT_EQ(combined_by_lookups(tree(texts[0] + "}"), tree(texts[1] + "}"), flags),
                  text_of(destination.get()));
    }
}

TEST(Object, CombinesNestedObjects) {
    const TrackingAllocator allocator;

    const struct {
        const char* destination;
        const char* source;
        int flags;
        const char* result;
    } rows[] = {
        {"{\"a\":1}", "{\"b\":2,\"a\":3}", cson_combine_replace, "{\"a\":1, \"b\":2}"},
        {"{\"a\":{\"x\":1}}", "{\"a\":{\"y\":2},\"b\":3}", 0,
         "{\"a\":{\"x\":1, \"y\":2}, \"b\":3}"},
        {"{\"a\":{\"x\":1}}", "{\"a\":[]}", 0, "{\"a\":{\"x\":1}}"},
        {"{\"a\":{\"x\":1}}", "{\"a\":{\"y\":2}}", cson_combine_flat, "{\"a\":{\"x\":1}}"},
        {"{\"a\":{\"x\":1}}", "{\"a\":{\"y\":2}}", cson_combine_flat | cson_combine_replace,
         "{\"a\":{\"y\":2}}"},
    };

    for (const auto& row : rows) {
        const Value destination = tree(row.destination);
        Value source = tree(row.source);
        EXPECT_EQ(cson_OK, cson_object_combine(object(destination), object(source), row.flags));
        source.reset();
        EXPECT_EQ(row.result, text_of(destination.get()));
    }
    const Value value = tree("{\"a\":{\"a\":5,\"b\":6}}");
    cson_object* inner = cson_value_object(cson_object_get_text(object(value), "a"));
    EXPECT_EQ(cson_OK, cson_object_combine(object(value), inner, 3));
    EXPECT_EQ("{\"a\":5, \"b\":6}", text_of(value.get())) << "outlives its place";
}

TEST(Object, FullReferenceCountsAreRefused) {
    const Value destination = tree("{\"a\":1}");
    const Value source = tree("{\"a\":2,\"b\":3}");
    const auto most = std::numeric_limits<std::uint32_t>::max();
    const int flat = cson_combine_flat | cson_combine_replace;
    cson_value* const values[] = {source.get(), cson_object_get_text(object(source), "a"),
                                  cson_object_get_text(object(source), "b"),
                                  object(source)->list.items[1]->key};
    for (cson_value* value : values) {
        const std::uint32_t count = std::exchange(value->refcount, most);
        EXPECT_EQ(cson_RangeError, cson_object_combine(object(destination), object(source), flat));
        EXPECT_EQ(most, std::exchange(value->refcount, count));
    }
    cson_string* key = cson_string_make("key", 3);
    cson_value* both = cson_value_of_string(key);
    both->refcount = most - 1;
    EXPECT_EQ(cson_RangeError, cson_object_put_string(object(destination), key, both));
    both->refcount = 0;
    cson_value_release(both);
    EXPECT_EQ(nullptr, cson_object_get_text(object(destination), "key"));
}

TEST(Copy, ObjectsHaveTheCapacityOfPuttingTheirPairs) {
    const struct {
        const char* text;
        std::uint32_t capacity;
    } rows[] = {{"{}", 0},
                {"{\"a\":1}", 6},
                {"{\"a\":1,\"b\":2}", 2},
                {"{\"a\":1,\"b\":2,\"c\":3,\"d\":4}", 6},
                {"{\"a\":1,\"b\":2,\"a\":3}", 3}};

    for (const auto& row : rows) {
        const Value copy(cson_value_copy(tree(row.text).get()));
        EXPECT_EQ(row.capacity, object(copy)->list.capacity) << row.text;
    }
}

// Lookups for each of them would take minutes.
TEST(Copy, ManyRepeatedKeysHaveTheFirstOnesPlaceAndTheLastMember) {
    const TrackingAllocator allocator;
    std::string text = "{";
    std::string expected = "{";
    for (int i = 0; i < 200000; ++i) {
        const std::string key = "\"key" + std::to_string(i * 7 % 100000) + "\":{\"key7\":";
        text.append(i != 0 ? "," : "").append(key + std::to_string(i) + "}");
        if (i < 100000)
            expected.append(i != 0 ? ", " : "").append(key + std::to_string(i + 100000) + "}");
    }
    const Value copy(cson_value_copy(tree(text + "}").get()));
    EXPECT_EQ(200000u, object(copy)->list.capacity);
    EXPECT_TRUE(expected + "}" == text_of(copy.get()));
    const Value merged = tree("{}");
    EXPECT_EQ(cson_OK, cson_object_combine(object(merged), object(copy), 0));
    EXPECT_TRUE(expected + "}" == text_of(merged.get()));
}

TEST(Copy, OfConstantsAndNull) {
    EXPECT_EQ(cson_value_true(), cson_value_copy(cson_value_true()));
    EXPECT_EQ(nullptr, cson_value_copy(nullptr));
    const Value cleared(cson_value_from_int(5));
    cson_value_clear(cleared.get());
    EXPECT_EQ(nullptr, cson_value_copy(cleared.get()));
}

TEST(Footprint, CountsRecordsPayloadsAndCapacities) {
    constexpr std::uint32_t record = sizeof(cson_value);
    constexpr std::uint32_t list = sizeof(cson_value_list);
    const Value value = tree("{\"abc\":[1,2.5,true,\"\"]}");
    const std::uint32_t expected = (record + list + 5 * sizeof(void*)) + (record + 4 + 3 + 1) +
                                   (record + list + 7 * sizeof(void*)) + (record + 4) +
                                   (record + 8);
    EXPECT_EQ(expected, cson_value_footprint(value.get()));
    EXPECT_EQ(0u, cson_value_footprint(cson_value_null_constant()));
    EXPECT_EQ(0u, cson_value_footprint(nullptr));
}

// A chain of 2^doublings objects, each the member "k" of the one before.
Value chain(int doublings) {
    Value root(cson_value_make_object());
    for (; doublings > 0; --doublings) {
        cson_value* rest = cson_value_copy(root.get());
        cson_object* last = object(root);
        while (last->list.count != 0)
            last = cson_value_object(last->list.items[0]->value);
        cson_object_put_text(last, "k", rest);
    }
    return root;
}

TEST(Deep, NothingRecurses) {
    constexpr int doublings = 20; // 16 bytes of stack for each object would be too many
    const Value root = chain(doublings);
    const Value copy(cson_value_copy(root.get()));
    ASSERT_NE(nullptr, copy);
    EXPECT_LT(40u << doublings, cson_value_footprint(copy.get()));
    EXPECT_EQ(cson_OK, cson_object_combine(object(root), object(copy), 0));
    cson_value_clear(copy.get());
    EXPECT_TRUE(cson_value_is_undefined(copy.get()));
}

TEST(Deep, WritesAsDeepAsTheOptionsAllow) {
    constexpr std::uint32_t deepest = 65535;
    cson_write_options options;
    options.max_depth = deepest;
    Value root = chain(16);
    EXPECT_EQ(deepest * std::string_view("{\"k\":}").size() + 2,
              text_of(root.get(), options).size());
    const Value outer(cson_value_make_object());
    cson_object_put_text(object(outer), "k", root.release());
    EXPECT_EQ("code 2", text_of(outer.get(), options));
}

TEST(Arguments, BecomeMembers) {
    const char* const arguments[] = {"program", "-a",      "--b=",           "---c=text", "-d=-7",
                                     "-e=7",    "-f=-1.5", "plain=1",        "--",        nullptr,
                                     "-g=-x",   "-a=+4",   "-h=-99999999999"};
    cson_object* made = nullptr;
    std::uint32_t count = 99;
    ASSERT_EQ(cson_OK, cson_object_from_args(13, arguments, &made, &count));
    EXPECT_EQ(9u, count);
    EXPECT_EQ(
        "{\"a\":4, \"b\":null, \"c\":\"text\", \"d\":-7, \"e\":\"7\", \"f\":-1.5, \"g\":\"-x\", "
        "\"h\":-99999999999.0}",
        text_of(cson_value_of_object(made)));
    EXPECT_EQ(cson_ArgError, cson_object_from_args(0, arguments, &made, nullptr));
    EXPECT_EQ(cson_OK, cson_object_from_args(1, arguments + 11, &made, nullptr));
    cson_release_object(made);
}

TEST(Lists, VisitsAndPushes) {
    cson_value_list list;
    EXPECT_EQ(3u, cson_value_list_reserve(&list, 3));
    EXPECT_EQ(3u, cson_value_list_reserve(&list, 2));
    EXPECT_EQ(cson_ArgError, cson_value_list_push(&list, nullptr));
    EXPECT_EQ(cson_OK, cson_value_list_push(&list, cson_value_true()));
    EXPECT_EQ(cson_OK, cson_value_list_push(&list, cson_value_false()));
    EXPECT_EQ(cson_OK, cson_value_list_push(&list, cson_value_true()));
    const auto until_false = [](cson_value* value, void* state) {
        ++*static_cast<int*>(state);
        return cson_value_bool(value) ? 0 : 42;
    };
    int visits = 0;
    EXPECT_EQ(42, cson_value_list_visit(&list, until_false, &visits));
    EXPECT_EQ(2, visits);
    cson_value_list_clear(&list, [](cson_value* value) { cson_value_release(value); });
    EXPECT_EQ(0u, list.capacity + list.count);
    EXPECT_EQ(nullptr, list.items);
}

} // namespace
