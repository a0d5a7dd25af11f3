// SPDX-License-Identifier: MIT
#include "AliasBytes.h"

#include <algorithm>

namespace aliastest {

std::string big(uint64_t number, size_t size) {
    std::string bytes = little(number, size);
    std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

std::string little(uint64_t number, size_t size) {
    std::string bytes;
    for (size_t i = 0; i < size; ++i)
        bytes += static_cast<char>(number >> 8 * i);
    return bytes;
}

uint32_t BookmarkBytes::add(uint32_t type, const std::string& bytes) {
    // Behind the offset of the first table.
    auto offset = static_cast<uint32_t>(4 + _items.size());
    _items += little(bytes.size(), 4) + little(type, 4) + bytes;
    _items.resize((_items.size() + 3) / 4 * 4, '\0');
    return offset;
}

uint32_t BookmarkBytes::addNames(const std::vector<std::string>& names) {
    std::string offsets;
    for (const std::string& name : names)
        offsets += little(addText(name), 4);
    return add(0x0601, offsets);
}

BookmarkBytes& BookmarkBytes::entry(uint32_t key, uint32_t offset) {
    _entries[key] = offset;
    return *this;
}

BookmarkBytes& BookmarkBytes::path(const std::vector<std::string>& names) {
    return entry(0x1004, addNames(names));
}

BookmarkBytes& BookmarkBytes::volume(const std::string& path, const std::string& name) {
    return entry(0x2002, addText(path)).entry(0x2010, addText(name));
}

BookmarkBytes& BookmarkBytes::flags(uint64_t flags) {
    return entry(0x1010, add(0x0201, little(flags, 8) + little(0x0F, 8) + little(0, 8)));
}

std::string BookmarkBytes::body() const {
    std::string table = little(12 + 12 * _entries.size(), 4) + little(0xFFFFFFFE, 4) +
                        little(1, 4) + little(0, 4) + little(_entries.size(), 4);
    for (auto [key, offset] : _entries)
        table += little(key, 4) + little(offset, 4) + little(0, 4);
    return little(4 + _items.size(), 4) + _items + table;
}

std::string BookmarkBytes::file() const {
    std::string content = body();
    return "book" + little(0, 4) + "mark" + little(0, 4) + little(56, 4) + little(56, 4) +
           little(content.size(), 4) + little(0x10040000, 4) + std::string(24, '\0') + content;
}

std::string BookmarkBytes::data() const {
    std::string content = body();
    return "book" + little(48 + content.size(), 4) + little(0x10040000, 4) + little(48, 4) +
           std::string(32, '\0') + content;
}

namespace {

std::string pascal(const std::string& text, size_t room) {
    std::string bytes = big(text.size(), 1) + text;
    bytes.resize(room, '\0');
    return bytes;
}

std::string fixedPart(const RecordFields& fields) {
    if (fields.version == 3)
        return big(0, 8) + std::string("H+\0\0", 4) + big(0, 2) + big(19, 4) +
               big(fields.targetNumber, 4) + big(0, 8) + big(0, 4) + std::string(14, '\0');
    return pascal(fields.volumeName, 28) + big(0, 4) + "H+" + big(0, 2) + big(19, 4) +
           pascal("target", 64) + big(fields.targetNumber, 4) + big(0, 4) + std::string(8, '\0') +
           big(0xFFFF, 2) + big(0xFFFF, 2) + big(0, 4) + big(0, 2) + std::string(10, '\0');
}

}  // namespace

std::string aliasRecord(const RecordFields& fields) {
    std::string rest = big(static_cast<uint64_t>(fields.version), 2) +
                       big(static_cast<uint64_t>(fields.kind), 2) + fixedPart(fields);
    for (const auto& [tag, bytes] : fields.values)
        rest += big(tag, 2) + big(bytes.size(), 2) + bytes + std::string(bytes.size() % 2, '\0');
    rest += big(0xFFFF, 2) + big(0, 2);
    return big(0, 4) + big(6 + rest.size(), 2) + rest;
}

std::string resourceFork(const std::string& type, const std::string& content) {
    std::string data = big(content.size(), 4) + content;
    std::string map = std::string(24, '\0') + big(28, 2) + big(0, 2);
    map += big(0, 2) + type + big(0, 2) + big(10, 2);                         // the list of types
    map += big(128, 2) + big(0xFFFF, 2) + big(0, 1) + big(0, 3) + big(0, 4);  // its resource
    std::string head =
        big(256, 4) + big(256 + data.size(), 4) + big(data.size(), 4) + big(map.size(), 4);
    head.resize(256, '\0');
    return head + data + map;
}

std::string companion(const std::string& finderType, uint16_t finderFlags,
                      const std::string& fork) {
    std::string finderInfo = finderType + "MACS" + big(finderFlags, 2) + std::string(22, '\0');
    std::string head = big(0x00051607, 4) + big(0x00020000, 4) + std::string(16, '\0') + big(2, 2);
    head += big(9, 4) + big(50, 4) + big(32, 4);
    head += big(2, 4) + big(82, 4) + big(fork.size(), 4);
    return head + finderInfo + fork;
}

}  // namespace aliastest
