// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// The settings that every store and every file of the benchmarks holds, made from a fixed seed
/// so that ours and the peers work on the same data in every run.
namespace tav::bench {

/// Repeatable random numbers (splitmix64).
class Random {
public:
    explicit Random(std::uint64_t seed) : _state(seed) {}
    std::uint64_t next();
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(next() % limit); }

    template <class Value>
    void shuffle(std::vector<Value>& values) {
        for (std::size_t i = values.size(); i > 1; --i)
            std::swap(values[i - 1], values[below(static_cast<std::uint32_t>(i))]);
    }

private:
    std::uint64_t _state;
};

enum class ValueType { integer, boolean, real, text, textArray };

struct Value {
    ValueType type = ValueType::integer;
    int integer = 0;
    bool boolean = false;
    double real = 0;
    std::string text;
    std::vector<std::string> texts;
};

struct Key {
    std::string name;
    Value value;
};

struct Group {
    std::string name;
    std::vector<Key> keys;  ///< by name
};

using Data = std::vector<Group>;  ///< by name

/// A hundred keys in each group: 45 % integers, 20 % booleans, 15 % doubles, 17 % texts, 3 %
/// arrays of three texts. Kept: the same object for the same size.
const Data& settingsData(std::size_t keyCount);

/// The type's name in a settings file, and the other way round.
const char* typeName(ValueType type);
ValueType typeOfName(const char* name);

/// The group and the key of one access.
struct Address {
    std::string group;
    std::string key;
};

/// Where values of a type stand, in a random order; 20,000 at most.
std::vector<Address> shuffledAddresses(const Data& data, ValueType type);

}  // namespace tav::bench
