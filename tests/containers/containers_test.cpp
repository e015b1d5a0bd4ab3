// SPDX-License-Identifier: MIT
#include "quillon/containers/key_index.h"
#include "quillon/containers/list.h"
#include "quillon/containers/map.h"
#include "quillon/containers/name_hash.h"

#include <gmock/gmock.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

using namespace quillon;
using testing::ElementsAre;

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

    void fill(DSParray<Mortal>& list, std::initializer_list<int> numbers) {
        for (const int name : numbers)
            list.add(make(name), DSP_APPEND);
    }

    static std::vector<int> names(const DSParray<Mortal>& list) {
        std::vector<int> result;
        for (std::uint32_t i = 0; i < list.count(); ++i)
            result.push_back(list.get(i)->name);
        return result;
    }

    std::vector<int> died;
};

// Both sides of the plug-in border see the same layout and the same capacities.
TEST_F(Containers, ListGrowsByHalf) {
    struct View {
        void* table;
        void **begin, **end, **limit;
        std::size_t cursor;
        bool references_only;
    };

    static_assert(sizeof(View) == sizeof(DSPrefArray<int>));

    DSPrefArray<int> list;
    std::vector<std::ptrdiff_t> capacities{0};
    for (int i = 0; i < 20; ++i) {
        list.add(nullptr, DSP_APPEND);
        View view{};
        std::memcpy(&view, static_cast<const void*>(&list), sizeof view);
        if (view.limit - view.begin != capacities.back())
            capacities.push_back(view.limit - view.begin);
        EXPECT_TRUE(view.references_only);
    }
    EXPECT_THAT(capacities, ElementsAre(0, 1, 2, 3, 4, 6, 9, 13, 19, 28));
}

TEST_F(Containers, ListAddsUpToItsEndAndDestroysWhatItOwnsFirstToLast) {
    {
        DSParray<Mortal> list;
        Mortal outside(died, 99);
        EXPECT_FALSE(list.remove(0, false));
        EXPECT_EQ(nullptr, list.get(0));
        EXPECT_EQ(nullptr, list.add(&outside, 1));
        int name = 1;
        for (const std::uint32_t position : {0U, DSP_APPEND, 0U, 1U, 4U}) {
            Mortal* const element = make(name++);
            EXPECT_EQ(element, list.add(element, position));
        }
        EXPECT_THAT(names(list), ElementsAre(3, 4, 1, 2, 5));
        for (const std::uint32_t position : {6U, DSP_APPEND - 1})
            EXPECT_EQ(nullptr, list.add(&outside, position));
        EXPECT_FALSE(list.remove(5, false));
        EXPECT_TRUE(list.remove(1, false));
        const std::unique_ptr<Mortal> kept(list.get(1));
        EXPECT_TRUE(list.remove(1, true));
        EXPECT_THAT(died, ElementsAre(4));
        EXPECT_EQ(nullptr, list.add(nullptr, 1)); // is there, and nothing to destroy
        EXPECT_EQ(4U, list.count());
        list.clear();
        EXPECT_EQ(0U, list.count());
        fill(list, {6});
    }
    EXPECT_THAT(died, ElementsAre(4, 3, 2, 5, 1, 99, 6));
}

TEST_F(Containers, ThoseThatReferNeverDestroy) {
    const std::unique_ptr<Mortal> one(make(1));
    {
        DSPrefArray<Mortal> list;
        for (int i = 0; i < 3; ++i)
            list.add(one.get(), DSP_APPEND);
        list.remove(0, false);
        list.add(one.get(), DSP_APPEND);
        DSPrefHashMap<Mortal> map;
        map.add(one.get(), 1);
    }
    EXPECT_TRUE(died.empty());
}

// Leaves another one in its list, which may move the storage.
struct Returning {
    DSParray<Returning>* list;
    Returning* another;

    ~Returning() {
        if (list != nullptr)
            list->add(another, DSP_APPEND);
    }
};

TEST_F(Containers, ListRemovesTheRightElementIfItsDestructorAppends) {
    DSParray<Returning> list;
    auto* const first = list.add(new Returning{}, DSP_APPEND);
    list.add(new Returning{&list, new Returning{}}, DSP_APPEND);
    EXPECT_TRUE(list.remove(1, false));
    EXPECT_EQ(first, list.get(0));
    EXPECT_EQ(nullptr, list.get(1)->list);
    EXPECT_EQ(2U, list.count());
}

TEST_F(Containers, MapKeepsTheFirstValueOfAKeyInOrderOfKeys) {
    {
        DSPhashMap<Mortal> map;
        EXPECT_EQ(nullptr, map.add(nullptr, 7));
        EXPECT_EQ(nullptr, map.find(7));
        for (const std::uint32_t key : {0xFFFFFFFFU, 5U, 0U, 0x80000000U})
            map.add(make(static_cast<int>(key)), key);
        Mortal second(died, 99);
        EXPECT_EQ(&second, map.add(&second, 5));
        EXPECT_EQ(5, map.find(5)->name);
        DSPhashMap<void> plain; // a leak or a second release is the sanitizer's to find
        plain.add(::operator new(100), 1);
    }
    EXPECT_THAT(died, ElementsAre(99, 0, 5, static_cast<int>(0x80000000U), -1));
}

TEST_F(Containers, IndexFindsWhatItWasGivenAndNothingElse) {
    KeyIndex<const std::uint32_t> index;
    EXPECT_EQ(nullptr, index.find(0));
    std::vector<std::uint32_t> keys;
    for (std::uint32_t i = 0; i < 3000; ++i)
        keys.push_back(i < 1000 ? i : i * 0x144CBC89U); // runs, and keys that crowd together
    for (const std::uint32_t& key : keys) {
        index.make_room_for_one();
        EXPECT_EQ(nullptr, index.find(key));
        index.add(&key, key);
    }
    for (const std::uint32_t& key : keys)
        EXPECT_EQ(&key, index.find(key));
}

TEST(Names, HashIsCaseSensitiveAndTakesBytesAsSigned) {
    EXPECT_EQ(0U, __mystring_hash(""));
    EXPECT_EQ(0x02ABE28AU, __mystring_hash("abc"));
    EXPECT_NE(__mystring_hash("abc"), __mystring_hash("ABC"));
    EXPECT_EQ(4500U ^ (0xFF80000AU ^ 16384U), __mystring_hash("\x80")); // -128, and its square
}

TEST(Names, ComparisonFoldsTheTwentySixLettersAlone) {
    const auto lower = [](int byte) { return byte >= 'A' && byte <= 'Z' ? byte + 32 : byte; };
    for (int i = 1; i < 256; ++i)
        for (int j = 1; j < 256; ++j) {
            const char a[] = {'x', static_cast<char>(i), 0};
            const char b[] = {'X', static_cast<char>(j), 0};
            ASSERT_EQ(lower(i) == lower(j), __mystring_case_insensitive_string_equal(a, b));
        }
    EXPECT_TRUE(__mystring_case_insensitive_string_equal("", ""));
    EXPECT_FALSE(__mystring_case_insensitive_string_equal("Hello", "Hello "));
}

} // namespace
