// SPDX-License-Identifier: MIT
#include "CoreServices/ResourceFork.h"

#include "CoreServices/ByteReader.h"

namespace coreservices {

namespace {

constexpr uint64_t kDoubleMark = 0x00051607;
constexpr uint64_t kDoubleVersion = 0x00020000;
constexpr uint64_t kResourceForkEntry = 2;
constexpr uint64_t kFinderEntry = 9;

// Counts of a resource map are one less than what they count, so 0xFFFF says none.
uint64_t countFrom(std::optional<uint64_t> number) {
    return number ? (*number + 1) & 0xFFFF : 0;
}

// Where the list of references to resources of the type begins, in the list of types.
std::optional<size_t> referencesOf(const ByteReader& map, size_t typeList, uint32_t type) {
    uint64_t count = countFrom(map.number(typeList, 2));
    for (uint64_t i = 0; i < count; ++i) {
        size_t entry = typeList + 2 + i * 8;
        auto found = map.number(entry, 4);
        if (!found)
            return std::nullopt;
        auto offset = map.number(entry + 6, 2);
        if (*found == type && offset && countFrom(map.number(entry + 4, 2)) > 0)
            return typeList + *offset;
    }
    return std::nullopt;
}

void take(CompanionContent& content, uint64_t id, std::string_view bytes) {
    if (id == kResourceForkEntry)
        content.resourceFork = bytes;
    if (id != kFinderEntry)
        return;
    ByteReader info(bytes, ByteOrder::Big);
    content.finderType = static_cast<uint32_t>(info.number(0, 4).value_or(0));
    content.finderFlags = static_cast<uint16_t>(info.number(8, 2).value_or(0));
}

}  // namespace

std::optional<std::string_view> firstResource(std::string_view fork, uint32_t type) {
    ByteReader reader(fork, ByteOrder::Big);
    auto data = reader.number(0, 4);
    auto map = reader.number(4, 4);
    auto mapLength = reader.number(12, 4);
    auto mapBytes = map && mapLength ? reader.slice(*map, *mapLength) : std::nullopt;
    if (!data || !mapBytes)
        return std::nullopt;
    ByteReader mapReader(*mapBytes, ByteOrder::Big);
    auto typeList = mapReader.number(24, 2);
    auto reference = typeList ? referencesOf(mapReader, *typeList, type) : std::nullopt;
    auto offset = reference ? mapReader.number(*reference + 5, 3) : std::nullopt;
    auto length = offset ? reader.number(*data + *offset, 4) : std::nullopt;
    return length ? reader.slice(*data + *offset + 4, *length) : std::nullopt;
}

std::optional<CompanionContent> parseCompanion(std::string_view bytes) {
    ByteReader reader(bytes, ByteOrder::Big);
    if (reader.number(0, 4) != kDoubleMark || reader.number(4, 4) != kDoubleVersion)
        return std::nullopt;
    CompanionContent content;
    uint64_t count = reader.number(24, 2).value_or(0);
    for (uint64_t i = 0; i < count; ++i) {
        size_t entry = 26 + i * 12;
        auto id = reader.number(entry, 4);
        auto offset = reader.number(entry + 4, 4);
        auto length = reader.number(entry + 8, 4);
        if (!id || !offset || !length)
            break;
        if (auto slice = reader.slice(*offset, *length))
            take(content, *id, *slice);
    }
    return content;
}

}  // namespace coreservices
