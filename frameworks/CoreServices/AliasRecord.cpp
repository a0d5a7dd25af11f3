// SPDX-License-Identifier: MIT
//
// Alias record: a fixed part, of which version 2 has 150 bytes and version 3 has 58, and then
// tagged values, each with its length and filled up to an even one. Numbers are big-endian.
#include "CoreServices/AliasRecord.h"

#include "CoreServices/ByteReader.h"
#include "CoreServices/MacRoman.h"

#include <algorithm>

namespace coreservices {

namespace {

constexpr uint64_t kTopFolder = 2;  // the number of the folder at the top of a volume

struct Layout {
    size_t targetNumber;
    size_t values;
    bool hasVolumeName;
};
constexpr Layout kVersion2 = {114, 150, true};
constexpr Layout kVersion3 = {28, 58, false};

enum Tag : uint64_t {
    kCarbonPath = 2,
    kUnicodeVolumeName = 15,
    kPosixPath = 18,
    kPosixVolumePath = 19,
    kEnd = 0xFFFF,
};

struct Values {
    std::optional<std::string> carbonPath;  // "Volume:folder:file"
    std::optional<std::string> posixPath;   // below the volume
    std::optional<std::string> posixVolumePath;
    std::string volumeName;
};

// Unicode names tell their own length once more.
std::string unicodeName(std::string_view bytes) {
    ByteReader reader(bytes, ByteOrder::Big);
    auto count = reader.number(0, 2);
    auto name = count ? reader.slice(2, *count * 2) : std::nullopt;
    return name ? fromBigEndianUtf16(*name) : std::string();
}

void take(Values& values, uint64_t tag, std::string_view bytes) {
    if (tag == kCarbonPath)
        values.carbonPath = fromMacRoman(bytes.substr(0, bytes.find('\0')));
    else if (tag == kPosixPath)
        values.posixPath = bytes;
    else if (tag == kPosixVolumePath)
        values.posixVolumePath = bytes;
    else if (tag == kUnicodeVolumeName)
        values.volumeName = unicodeName(bytes);
}

std::optional<Values> readValues(const ByteReader& record, size_t offset) {
    Values values;
    while (true) {
        auto tag = record.number(offset, 2);
        if (!tag || *tag == kEnd)
            break;
        auto length = record.number(offset + 2, 2);
        auto bytes = length ? record.slice(offset + 4, *length) : std::nullopt;
        if (!bytes)
            return std::nullopt;
        take(values, *tag, *bytes);
        offset += 4 + *length + *length % 2;
    }
    return values;
}

// Outside POSIX calls a colon separates names, and a slash in a name is a colon to those calls.
std::string swapSeparators(std::string text) {
    for (char& c : text)
        c = c == ':' ? '/' : c == '/' ? ':' : c;
    return text;
}

std::optional<std::vector<std::string>> carbonComponents(const std::string& path) {
    auto components = plainComponents(swapSeparators(path));
    if (!components || components->empty())
        return std::nullopt;
    components->erase(components->begin());
    return components;
}

std::optional<std::vector<std::string>> componentsOf(const Values& values) {
    if (values.posixPath)
        return plainComponents(*values.posixPath);
    if (values.carbonPath)
        return carbonComponents(*values.carbonPath);
    return std::nullopt;
}

std::string pascalText(const ByteReader& record, size_t offset, size_t room) {
    size_t length = std::min<size_t>(record.number(offset, 1).value_or(0), room - 1);
    return fromMacRoman(record.slice(offset + 1, length).value_or(std::string_view()));
}

std::string volumeNameOf(const ByteReader& record, const Layout& layout, const Values& values) {
    std::string name = values.volumeName;
    if (name.empty() && layout.hasVolumeName)
        name = pascalText(record, 10, 28);
    if (name.empty() && values.carbonPath)
        name = values.carbonPath->substr(0, values.carbonPath->find(':'));
    return swapSeparators(name);
}

AliasKind kindOf(const ByteReader& record, const Layout& layout, const MacAlias& alias) {
    if (alias.components.empty() || record.number(layout.targetNumber, 4) == kTopFolder)
        return AliasKind::Disk;
    return record.number(8, 2) == 1 ? AliasKind::Folder : AliasKind::File;
}

// Null for what is no record.
const Layout* layoutOf(const ByteReader& record) {
    auto kind = record.number(8, 2);
    if (!kind || *kind > 1)
        return nullptr;
    auto version = record.number(6, 2);
    return version == 2 ? &kVersion2 : version == 3 ? &kVersion3 : nullptr;
}

}  // namespace

bool beginsAsAliasRecord(std::string_view bytes, uint64_t fileSize) {
    ByteReader reader(bytes, ByteOrder::Big);
    return reader.number(4, 2) == fileSize && layoutOf(reader) != nullptr;
}

std::optional<MacAlias> parseAliasRecord(std::string_view bytes) {
    ByteReader whole(bytes, ByteOrder::Big);
    auto size = whole.number(4, 2);
    const Layout* layout = layoutOf(whole);
    if (layout == nullptr || !size || *size < layout->values || *size > bytes.size())
        return std::nullopt;
    ByteReader record(bytes.substr(0, *size), ByteOrder::Big);
    auto values = readValues(record, layout->values);
    auto components = values ? componentsOf(*values) : std::nullopt;
    if (!components)
        return std::nullopt;
    MacAlias alias;
    alias.components = std::move(*components);
    alias.volumeName = volumeNameOf(record, *layout, *values);
    alias.onStartupVolume = values->posixVolumePath == "/";
    alias.kind = kindOf(record, *layout, alias);
    return alias;
}

}  // namespace coreservices
