// SPDX-License-Identifier: MIT
#include "tests/support/PtpObjects.h"

#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <ctime>
#include <sys/stat.h>

namespace tav::test {

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kTop = 0xFFFFFFFF;
constexpr unsigned kAssociation = 0x3001;
constexpr unsigned kExifJpeg = 0x3801;

std::string dateOf(const fs::path& path) {
    struct stat info {};
    stat(path.c_str(), &info);
    std::tm parts{};
    localtime_r(&info.st_mtime, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%dT%H%M%S", &parts);
    return text;
}

/// Takes the next character of UTF-8 from the text.
std::uint32_t takeCharacter(const std::string& text, std::size_t& at) {
    const auto lead = static_cast<unsigned char>(text[at++]);
    if (lead < 0x80)
        return lead;
    std::uint32_t value = lead & (lead < 0xE0 ? 0x1F : 0x0F);
    for (int rest = lead < 0xE0 ? 1 : 2; rest > 0 && at < text.size(); --rest)
        value = value << 6 | (static_cast<unsigned char>(text[at++]) & 0x3F);
    return value;
}

}  // namespace

PtpData& PtpData::number(std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i)
        _bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    return *this;
}

PtpData& PtpData::array(const std::vector<std::uint32_t>& values, std::size_t size) {
    number(values.size(), 4);
    for (const std::uint32_t value : values)
        number(value, size);
    return *this;
}

PtpData& PtpData::text(const std::string& utf8) {
    if (utf8.empty())
        return number(0, 1);
    PtpData characters;
    std::uint64_t count = 1;
    for (std::size_t at = 0; at < utf8.size(); ++count)
        characters.number(takeCharacter(utf8, at), 2);
    number(count, 1);
    _bytes += characters.bytes();
    return number(0, 2);
}

void PtpObjects::add(std::uint32_t parent, const fs::path& folder) {
    std::vector<fs::path> paths;
    for (const auto& entry : fs::directory_iterator(folder))
        paths.push_back(entry.path());
    std::ranges::sort(paths);
    for (const fs::path& path : paths) {
        const std::uint32_t handle = _next++;
        const bool isFolder = fs::is_directory(path);
        _objects[handle] = {parent, path.filename().string(), path, isFolder};
        if (isFolder)
            add(handle, path);
    }
}

void PtpObjects::rename(const std::string& path, const std::string& name) {
    for (auto& [handle, object] : _objects)
        if (object.path.string().ends_with("/" + path))
            object.name = name;
}

std::vector<std::uint32_t> PtpObjects::handlesIn(std::uint32_t parent) const {
    std::vector<std::uint32_t> handles;
    for (const auto& [handle, object] : _objects)
        if (parent == 0 || object.parent == (parent == kTop ? 0 : parent))
            handles.push_back(handle);
    return handles;
}

std::string PtpObjects::info(std::uint32_t handle, std::int64_t toldSize) const {
    const PtpObject& object = _objects.at(handle);
    std::uint64_t size = object.isFolder ? 0 : fs::file_size(object.path);
    if (!object.isFolder && toldSize >= 0)
        size = static_cast<std::uint64_t>(toldSize);
    PtpData data;
    data.number(kStore, 4).number(object.isFolder ? kAssociation : kExifJpeg, 2).number(0, 2);
    data.number(size, 4).number(kExifJpeg, 2).number(0, 4).number(0, 8);  // no thumbnail
    data.number(8, 4).number(8, 4).number(8, 4).number(object.parent, 4);
    data.number(object.isFolder ? 1 : 0, 2).number(0, 4).number(0, 4);
    const std::string date = dateOf(object.path);
    data.text(object.name).text(date).text(date).text("");
    return data.bytes();
}

std::string PtpObjects::contents(std::uint32_t handle) const {
    return readFile(_objects.at(handle).path.string());
}

}  // namespace tav::test
