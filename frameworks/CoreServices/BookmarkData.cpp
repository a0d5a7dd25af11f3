// SPDX-License-Identifier: MIT
//
// Bookmark data: a header that tells its own length, then the body, to whose beginning every offset
// refers: the offset of the first table, data items (length, type, bytes) and tables (a head and
// entries of key, offset, zero). Numbers are little-endian.
#include "CoreServices/BookmarkData.h"

#include "CoreServices/ByteReader.h"

#include <algorithm>

namespace coreservices {

namespace {

constexpr size_t kShortestHeader = 48;
constexpr size_t kLongestHeader = 4096;
constexpr uint64_t kTableMark = 0xFFFFFFFE;
// More than anybody would write; they bound what a hostile file can make us do.
constexpr size_t kMostTables = 64;
constexpr size_t kMostEntries = 4096;
constexpr size_t kMostComponents = 1024;
constexpr size_t kLongestName = 1024;
constexpr size_t kLongestPath = 4096;

enum Key : uint64_t {
    kTargetPath = 0x1004,
    kTargetFlags = 0x1010,
    kVolumePath = 0x2002,
    kVolumeName = 0x2010,
    kVolumeIsRoot = 0x2030,
};
enum Type : uint64_t { kText = 0x0101, kData = 0x0201, kTrue = 0x0501, kArray = 0x0601 };
enum Flag : uint64_t { kIsDirectory = 2, kIsVolume = 8 };

struct Item {
    uint64_t type = 0;
    std::string_view bytes;
};

class Bookmark {
public:
    explicit Bookmark(std::string_view body) : _body(body, ByteOrder::Little) {}

    std::optional<MacAlias> alias() const;

private:
    std::optional<Item> itemAt(size_t offset) const;
    std::optional<Item> find(Key key) const;
    std::optional<size_t> findInTable(size_t table, Key key) const;
    std::optional<std::string> text(size_t offset) const;
    std::optional<std::vector<std::string>> names(const Item& array) const;
    std::optional<std::vector<std::string>> volumeNames() const;

    ByteReader _body;
};

std::optional<Item> Bookmark::itemAt(size_t offset) const {
    auto length = _body.number(offset, 4);
    auto type = _body.number(offset + 4, 4);
    if (!length || !type)
        return std::nullopt;
    auto bytes = _body.slice(offset + 8, *length);
    if (!bytes)
        return std::nullopt;
    return Item{*type, *bytes};
}

// The entries are sorted, but a search that relies on it could be led astray.
std::optional<size_t> Bookmark::findInTable(size_t table, Key key) const {
    size_t count = std::min<size_t>(_body.number(table + 16, 4).value_or(0), kMostEntries);
    for (size_t i = 0; i < count; ++i) {
        size_t entry = table + 20 + i * 12;
        auto found = _body.number(entry, 4);
        if (!found)
            return std::nullopt;
        if (*found == key)
            return _body.number(entry + 4, 4);
    }
    return std::nullopt;
}

// The first table is about the target itself; others are about disk images on the way to it.
std::optional<Item> Bookmark::find(Key key) const {
    auto table = _body.number(0, 4);
    for (size_t i = 0; i < kMostTables && table && *table != 0; ++i) {
        if (_body.number(*table + 4, 4) != kTableMark)
            return std::nullopt;
        if (auto offset = findInTable(*table, key))
            return itemAt(*offset);
        table = _body.number(*table + 12, 4);
    }
    return std::nullopt;
}

std::optional<std::string> Bookmark::text(size_t offset) const {
    auto item = itemAt(offset);
    if (!item || item->type != kText || item->bytes.size() > kLongestName)
        return std::nullopt;
    return std::string(item->bytes);
}

std::optional<std::vector<std::string>> Bookmark::names(const Item& array) const {
    ByteReader offsets(array.bytes, ByteOrder::Little);
    if (array.type != kArray || array.bytes.size() / 4 > kMostComponents)
        return std::nullopt;
    std::vector<std::string> names;
    for (size_t i = 0; i + 4 <= array.bytes.size(); i += 4) {
        auto name = text(*offsets.number(i, 4));
        if (!name || !isPlainComponent(*name))
            return std::nullopt;
        names.push_back(std::move(*name));
    }
    return names;
}

// Both forms are met: a text and an array of names.
std::optional<std::vector<std::string>> Bookmark::volumeNames() const {
    auto volume = find(kVolumePath);
    if (!volume)
        return std::vector<std::string>();
    if (volume->type == kText && volume->bytes.size() <= kLongestPath)
        return plainComponents(volume->bytes);
    return names(*volume);
}

void takeFlags(const Item& flags, MacAlias& alias) {
    ByteReader numbers(flags.bytes, ByteOrder::Little);
    uint64_t bits = flags.type == kData ? numbers.number(0, 8).value_or(0) : 0;
    if ((bits & kIsDirectory) != 0)
        alias.kind = AliasKind::Folder;
    if ((bits & kIsVolume) != 0)
        alias.kind = AliasKind::Disk;
}

// What lies below the volume, from the path of the target and that of its volume.
void takeComponents(std::vector<std::string> path, const std::vector<std::string>& volume,
                    MacAlias& alias) {
    bool below =
        path.size() >= volume.size() && std::equal(volume.begin(), volume.end(), path.begin());
    if (below)
        path.erase(path.begin(), path.begin() + static_cast<ptrdiff_t>(volume.size()));
    alias.components = std::move(path);
    if (alias.components.empty())
        alias.kind = AliasKind::Disk;
}

std::optional<MacAlias> Bookmark::alias() const {
    auto path = find(kTargetPath);
    auto components = path ? names(*path) : std::nullopt;
    auto volume = volumeNames();
    if (!components || !volume)
        return std::nullopt;
    MacAlias alias;
    if (auto flags = find(kTargetFlags))
        takeFlags(*flags, alias);
    auto name = find(kVolumeName);
    if (name && name->type == kText && name->bytes.size() <= kLongestName)
        alias.volumeName = name->bytes;
    else if (volume->size() == 2 && volume->front() == "Volumes")
        alias.volumeName = volume->back();
    auto isRoot = find(kVolumeIsRoot);
    alias.onStartupVolume = volume->empty() || (isRoot && isRoot->type == kTrue);
    takeComponents(std::move(*components), *volume, alias);
    return alias;
}

bool begins(std::string_view bytes, std::string_view mark, size_t offset = 0) {
    return bytes.size() >= offset + mark.size() && bytes.substr(offset, mark.size()) == mark;
}

}  // namespace

// As a file of its own it has "mark" where the data in other files have the number of its version.
bool beginsAsBookmark(std::string_view bytes) {
    using namespace std::string_view_literals;
    bool named = begins(bytes, "book") || begins(bytes, "alis");
    return named && (begins(bytes, "mark", 8) || begins(bytes, "\0\0\x04\x10"sv, 8));
}

std::optional<MacAlias> parseBookmark(std::string_view bytes) {
    if (!beginsAsBookmark(bytes))
        return std::nullopt;
    ByteReader reader(bytes, ByteOrder::Little);
    auto header = reader.number(begins(bytes, "mark", 8) ? 16 : 12, 4);
    if (!header || *header < kShortestHeader || *header > kLongestHeader || *header > bytes.size())
        return std::nullopt;
    return Bookmark(bytes.substr(*header)).alias();
}

}  // namespace coreservices
