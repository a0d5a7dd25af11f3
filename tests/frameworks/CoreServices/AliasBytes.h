// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace aliastest {

std::string big(uint64_t number, size_t size);
std::string little(uint64_t number, size_t size);

// Bookmark data, put together from items.
class BookmarkBytes {
public:
    // Each gives the offset of the item in the body.
    uint32_t add(uint32_t type, const std::string& bytes);
    uint32_t addText(const std::string& text) { return add(0x0101, text); }
    uint32_t addNames(const std::vector<std::string>& names);

    BookmarkBytes& path(const std::vector<std::string>& names);
    BookmarkBytes& volume(const std::string& path, const std::string& name);
    BookmarkBytes& flags(uint64_t flags);
    BookmarkBytes& entry(uint32_t key, uint32_t offset);

    std::string body() const;
    // As it is in an alias file, and as it is elsewhere.
    std::string file() const;
    std::string data() const;

private:
    std::string _items;
    std::map<uint32_t, uint32_t> _entries;
};

struct RecordFields {
    int version = 2;
    int kind = 1;
    std::string volumeName;
    uint32_t targetNumber = 100;
    std::vector<std::pair<uint16_t, std::string>> values;
};
std::string aliasRecord(const RecordFields& fields);

// A resource fork with one resource.
std::string resourceFork(const std::string& type, const std::string& content);
// A companion file ("._name").
std::string companion(const std::string& finderType, uint16_t finderFlags, const std::string& fork);

}  // namespace aliastest
