// SPDX-License-Identifier: MIT
#include "ula/foundation/util/IndexedMap.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace tav::util {
namespace {

using Map = IndexedMap<std::string, int>;

void expectEqual(const Map& map, const std::map<std::string, int>& model) {
    ASSERT_EQ(map.size(), model.size());
    auto entry = map.begin();
    for (const auto& [key, value] : model) {
        ASSERT_EQ(entry->first, key);
        ASSERT_EQ(entry->second, value);
        ASSERT_TRUE(map.contains(key));
        ASSERT_EQ(map.find(key), entry);
        ++entry;
    }
    EXPECT_EQ(entry, map.end());
}

TEST(IndexedMapTest, BehavesAsAnOrderedMapUnderRandomOperations) {
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        Map map;
        std::map<std::string, int> model;
        for (int step = 0; step < 60; ++step) {
            const std::string key = std::to_string(random() % 40);
            const int value = static_cast<int>(random() % 100);
            switch (random() % 6) {
            case 0:
                map[key] = model[key] = value;
                break;
            case 1:
                map.insert_or_assign(key, value);
                model.insert_or_assign(key, value);
                break;
            case 2:
                EXPECT_EQ(map.insert({key, value}).second, model.insert({key, value}).second);
                break;
            case 3:
                map.append(key, value);
                model[key] = value;
                break;
            case 4:
                EXPECT_EQ(map.erase(key), model.erase(key));
                break;
            default:
                EXPECT_EQ(map.contains(key), model.contains(key));
            }
        }
        expectEqual(map, model);
        map.buildIndex();
        expectEqual(map, model);
        Map copy = map;
        const Map moved = std::move(map);
        expectEqual(copy, model);
        expectEqual(moved, model);
        copy.clear();
        EXPECT_TRUE(copy.empty());
        EXPECT_FALSE(copy.contains("1"));
    }
}

TEST(IndexedMapTest, AppendTakesKeysInAnyOrder) {
    Map map;
    for (const char* key : {"b", "a", "c", "b"})
        map.append(key, static_cast<int>(map.size()));
    map.buildIndex();
    expectEqual(map, {{"a", 1}, {"b", 3}, {"c", 2}});
}

TEST(IndexedMapTest, ReferencesStayValidWhileEntriesAreAdded) {
    Map map;
    int& first = map["first"];
    for (int i = 0; i < 1000; ++i)
        map[std::to_string(i)] = i;
    first = 42;
    EXPECT_EQ(map.at("first"), 42);
    EXPECT_EQ(&map.at("first"), &first);
}

TEST(IndexedMapTest, AtThrowsForAMissingKey) {
    EXPECT_THROW(Map().at("none"), std::out_of_range);
}

TEST(IndexedMapTest, KeysOfOneHashAreToldApart) {
    struct SameHash {
        std::size_t operator()(int) const { return 7; }
    };
    IndexedMap<int, int, SameHash> map;
    for (int i = 0; i < 100; ++i)
        map[i] = i;
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(map.at(i), i);
    EXPECT_FALSE(map.contains(100));
}

}  // namespace
}  // namespace tav::util
