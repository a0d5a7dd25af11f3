// SPDX-License-Identifier: MIT
#include "bench/PeerData.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <stdexcept>

namespace tav::bench {

namespace {

constexpr std::array kTypeNames = {"int", "bool", "double", "string", "string_array"};

const char* word(Random& random) {
    static constexpr std::array words = {"Window", "Width",  "Height",  "Recent", "File",
                                         "Panel",  "Zoom",   "Color",   "Export", "Path",
                                         "Camera", "Import", "Visible", "Last",   "Thumb",
                                         "Size",   "Sort",   "Order",   "Cache",  "Limit"};
    return words[random.below(words.size())];
}

std::string numbered(const char* prefix, int digits, std::size_t number) {
    std::array<char, 40> text;
    std::snprintf(text.data(), text.size(), "%s%0*zu", prefix, digits, number);
    return text.data();
}

/// Words of a path or a sentence; some need escaping, some are not ASCII.
std::string phrase(Random& random) {
    const std::size_t length = 8 + random.below(40);
    std::string text;
    while (text.size() < length) {
        text += word(random);
        const std::uint32_t kind = random.below(40);
        if (kind == 0)
            text += " & ";
        else if (kind == 1)
            text += "<b>";
        else if (kind == 2)
            text += "\xC3\xA9";
        else
            text += kind % 2 != 0 ? " " : "/";
    }
    if (text.back() == ' ')
        text.back() = 'x';
    return text;
}

Value randomValue(Random& random) {
    Value value;
    const std::uint32_t percent = random.below(100);
    if (percent < 45) {
        value.integer = static_cast<int>(random.below(200000)) - 50000;
    } else if (percent < 65) {
        value.type = ValueType::boolean;
        value.boolean = random.below(2) != 0;
    } else if (percent < 80) {
        value.type = ValueType::real;
        value.real = (static_cast<int>(random.below(2000000)) - 1000000) / 1024.0;
    } else if (percent < 97) {
        value.type = ValueType::text;
        value.text = phrase(random);
    } else {
        value.type = ValueType::textArray;
        for (int i = 0; i < 3; ++i)
            value.texts.push_back(phrase(random));
    }
    return value;
}

Data makeData(std::size_t keyCount) {
    constexpr std::size_t keysPerGroup = 100;
    Random random(42);
    Data data;
    for (std::size_t made = 0; made < keyCount; ++made) {
        const std::size_t position = made % keysPerGroup;
        if (position == 0)
            data.push_back({numbered("Group", 5, data.size()) + word(random), {}});
        std::string name = numbered("k", 3, position) + word(random);
        name += word(random);
        data.back().keys.push_back({std::move(name), randomValue(random)});
    }
    return data;
}

}  // namespace

std::uint64_t Random::next() {
    std::uint64_t mixed = (_state += 0x9E3779B97F4A7C15u);
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBu;
    return mixed ^ (mixed >> 31);
}

const Data& settingsData(std::size_t keyCount) {
    static std::map<std::size_t, Data> kept;
    Data& data = kept[keyCount];
    if (data.empty())
        data = makeData(keyCount);
    return data;
}

const char* typeName(ValueType type) {
    return kTypeNames[static_cast<std::size_t>(type)];
}

ValueType typeOfName(const char* name) {
    for (std::size_t i = 0; i < kTypeNames.size(); ++i)
        if (std::strcmp(kTypeNames[i], name) == 0)
            return static_cast<ValueType>(i);
    throw std::runtime_error("no type of settings");
}

std::vector<Address> shuffledAddresses(const Data& data, ValueType type) {
    constexpr std::size_t limit = 20000;
    std::vector<Address> addresses;
    for (const Group& group : data)
        for (const Key& key : group.keys)
            if (key.value.type == type)
                addresses.push_back({group.name, key.name});
    Random(5).shuffle(addresses);
    if (addresses.size() > limit)
        addresses.resize(limit);
    return addresses;
}

}  // namespace tav::bench
