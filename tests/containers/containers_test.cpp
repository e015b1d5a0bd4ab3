#include "quillon/containers/key_index.h"
#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/containers/names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace quillon;
using testing::ElementsAre;
using testing::IsEmpty;

// Notes its end in a record.
class Mortal {
public:
    Mortal(std::vector<int>& deaths, int number) : name(number), record(deaths) {}

    Mortal(const Mortal&) = delete;
    Mortal& operator=(const Mortal&) = delete;

    ~Mortal() { record.push_back(name); }

    const int name;

private:
    std::vector<int>& record;
};

class Containers : public testing::Test {
protected:
    Mortal* make(int name) { return new Mortal(died, name); }

    static std::vector<int> names(const DSParray<Mortal>& list) {
        std::vector<int> result;
        for (std::uint32_t i = 0; i < list.count(); ++i)
            result.push_back(list.get(i) != nullptr ? list.get(i)->name : 0);
        return result;
    }

    std::vector<int> died;
};

// The capacity seen from outside: how far elements can be added before the next growth. Growth is
// to half as much again, and to 1 from nothing.
TEST_F(Containers, ListGrowsByHalf) {
    struct View {
        void* table;
        void** begin;
        void** end;
        void** limit;
    };

    DSPrefArray<int> list;
    int element = 0;
    std::vector<std::ptrdiff_t> capacities{0};
    for (int i = 0; i < 40; ++i) {
        list.add(&element, DSP_APPEND);
        View view{};
        std::memcpy(&view, static_cast<const void*>(&list), sizeof view);
        if (view.limit - view.begin != capacities.back())
            capacities.push_back(view.limit - view.begin);
    }
    EXPECT_THAT(capacities, ElementsAre(0, 1, 2, 3, 4, 6, 9, 13, 19, 28, 42));
}

TEST_F(Containers, ListAddsAtEveryPositionUpToTheEnd) {
    struct Case {
        std::vector<int> start;
        std::uint32_t position;
        bool added;
        std::vector<int> result;
    };

    const Case cases[] = {
        {{}, 0, true, {9}},
        {{}, DSP_APPEND, true, {9}},
        {{}, 1, false, {}},
        {{1, 2, 3}, 0, true, {9, 1, 2, 3}},
        {{1, 2, 3}, 2, true, {1, 2, 9, 3}},
        {{1, 2, 3}, 3, true, {1, 2, 3, 9}},
        {{1, 2, 3}, 4, false, {1, 2, 3}},
        {{1, 2, 3}, DSP_APPEND - 1, false, {1, 2, 3}},
        {{1, 2, 3}, DSP_APPEND, true, {1, 2, 3, 9}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::PrintToString(row.start) + " at " + std::to_string(row.position));
        DSParray<Mortal> list;
        for (const int name : row.start)
            list.add(make(name), DSP_APPEND);
        Mortal* const nine = make(9);
        EXPECT_EQ(row.added ? nine : nullptr, list.add(nine, row.position));
        EXPECT_EQ(row.result, names(list));
        EXPECT_THAT(died, IsEmpty());
        if (!row.added)
            delete nine;
        list.clear();
        died.clear();
    }
}

TEST_F(Containers, ListRemovesAndDestroysWhatItOwns) {
    DSParray<Mortal> list;
    EXPECT_FALSE(list.remove(0, false));
    EXPECT_EQ(nullptr, list.get(0));
    for (const int name : {1, 2, 3, 4})
        list.add(make(name), DSP_APPEND);
    EXPECT_FALSE(list.remove(4, false));
    EXPECT_FALSE(list.remove(DSP_APPEND, false));
    EXPECT_TRUE(list.remove(1, false));
    EXPECT_THAT(names(list), ElementsAre(1, 3, 4));
    EXPECT_THAT(died, ElementsAre(2));
    Mortal* const kept = list.get(1);
    EXPECT_TRUE(list.remove(1, true));
    EXPECT_THAT(names(list), ElementsAre(1, 4));
    EXPECT_THAT(died, ElementsAre(2));
    delete kept;
}

TEST_F(Containers, ListDestroysFirstToLastAndSkipsNull) {
    {
        DSParray<Mortal> list;
        EXPECT_EQ(nullptr, list.add(nullptr, DSP_APPEND));
        for (const int name : {3, 1, 2})
            list.add(make(name), DSP_APPEND);
        EXPECT_EQ(4U, list.count());
        EXPECT_TRUE(list.remove(0, false));
        list.add(nullptr, 1);
    }
    EXPECT_THAT(died, ElementsAre(3, 1, 2));
}

TEST_F(Containers, ReferringListNeverDestroys) {
    const std::unique_ptr<Mortal> one(make(1));
    const std::unique_ptr<Mortal> two(make(2));
    {
        DSPrefArray<Mortal> list;
        for (Mortal* element : {one.get(), two.get(), one.get()})
            list.add(element, DSP_APPEND);
        list.remove(0, false);
        list.remove_if([&](const Mortal* element) { return element == two.get(); });
        EXPECT_THAT(names(list), ElementsAre(1));
        list.clear();
        list.add(two.get(), DSP_APPEND);
    }
    EXPECT_THAT(died, IsEmpty());
}

TEST_F(Containers, ListTakesManyOutInOnePass) {
    DSParray<Mortal> list;
    for (const int name : {1, 2, 3, 4, 5, 6})
        list.add(make(name), DSP_APPEND);
    std::vector<int> asked;
    list.remove_if([&](const Mortal* element) {
        asked.push_back(element->name);
        if (element->name < 10) // each draws one more behind the end, which may move the storage
            list.add(make(element->name + 10), DSP_APPEND);
        return element->name % 3 != 0;
    });
    EXPECT_THAT(asked, ElementsAre(1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, 16));
    EXPECT_THAT(died, ElementsAre(1, 2, 4, 5, 11, 13, 14, 16));
    EXPECT_THAT(names(list), ElementsAre(3, 6, 12, 15));
    died.clear();

    EXPECT_THROW(list.remove_if([](const Mortal* element) {
        return element->name == 12 ? throw std::runtime_error("cut") : element->name == 3;
    }),
                 std::runtime_error);
    EXPECT_THAT(died, ElementsAre(3));
    EXPECT_THAT(names(list), ElementsAre(6, 12, 15));
}

TEST_F(Containers, MapKeepsTheFirstValueOfAKeyInOrderOfKeys) {
    {
        DSPhashMap<Mortal> map;
        EXPECT_EQ(nullptr, map.find(0));
        EXPECT_EQ(nullptr, map.add(nullptr, 7));
        EXPECT_EQ(map.begin(), map.end());
        for (const std::uint32_t key : {0xFFFFFFFFU, 5U, 0U, 0x80000000U})
            map.add(make(static_cast<int>(key)), key);
        const auto walk = map.begin();
        Mortal* const second = make(99);
        EXPECT_EQ(second, map.add(second, 5));
        EXPECT_EQ(5, map.find(5)->name);
        delete second;
        died.clear();
        EXPECT_EQ(0U, walk->first);
    }
    EXPECT_THAT(died, ElementsAre(0, 5, static_cast<int>(0x80000000U), -1));
}

TEST_F(Containers, ReferringMapNeverDestroysAndOneOfVoidFreesPlainly) {
    const std::unique_ptr<Mortal> one(make(1));
    {
        DSPrefHashMap<Mortal> referring;
        referring.add(one.get(), 1);
        DSPrefHashMap<void> parameters;
        parameters.add(one.get(), 1);
        DSPhashMap<void> owning; // a leak or a second release is the sanitizer's to find
        owning.add(::operator new(100), 1);
    }
    EXPECT_THAT(died, IsEmpty());
}

TEST_F(Containers, IndexFindsWhatItWasGivenAndNothingElse) {
    KeyIndex<const std::uint32_t> index;
    EXPECT_EQ(nullptr, index.find(0));
    std::vector<std::uint32_t> keys;
    for (std::uint32_t i = 0; i < 3000; ++i)
        keys.push_back(i < 1000 ? i : i * 0x9E3779B1U); // runs, and keys that crowd together
    for (const std::uint32_t& key : keys) {
        index.make_room_for_one();
        EXPECT_EQ(nullptr, index.find(key));
        index.add(&key, key);
    }
    for (const std::uint32_t& key : keys)
        EXPECT_EQ(&key, index.find(key));
    EXPECT_EQ(nullptr, index.find(1000));
}

TEST(Names, HashIsCaseSensitiveAndTakesBytesAsSigned) {
    EXPECT_EQ(0U, __mystring_hash(""));
    EXPECT_EQ(0x02ABE28AU, __mystring_hash("abc"));
    EXPECT_NE(__mystring_hash("abc"), __mystring_hash("ABC"));
    // n = 1: a = (0xFF800000 + 10), b = 128 * 128, size = 4500.
    EXPECT_EQ(4500U ^ (0xFF80000AU ^ 16384U), __mystring_hash("\x80"));
    EXPECT_EQ(__mystring_hash(std::string(100'000, 'z').c_str()),
              name_hash(std::string(100'000, 'z')));
}

TEST(Names, ComparisonFoldsTheTwentySixLettersAlone) {
    for (int i = 1; i < 256; ++i)
        for (int j = 1; j < 256; ++j) {
            const auto lower = [](int byte) {
                return byte >= 'A' && byte <= 'Z' ? byte + 32 : byte;
            };
            const char a[] = {'x', static_cast<char>(i), 0};
            const char b[] = {'X', static_cast<char>(j), 0};
            ASSERT_EQ(lower(i) == lower(j), __mystring_case_insensitive_string_equal(a, b))
                << i << " and " << j;
        }
    EXPECT_TRUE(__mystring_case_insensitive_string_equal("", ""));
    EXPECT_FALSE(__mystring_case_insensitive_string_equal("Hello", "Hello "));
    EXPECT_FALSE(__mystring_case_insensitive_string_equal("", "a"));
    const std::string longest(40'000, 'q');
    EXPECT_FALSE(
        __mystring_case_insensitive_string_equal(longest.c_str(), (longest + "q").c_str()));
}

} // namespace
