// SPDX-License-Identifier: MIT
#include "ula/src/Core/ImportPlaces.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>

namespace tav::ula {

namespace {

constexpr int kMostOfAName = 100'000;
constexpr std::size_t kLongestName = 255;

/// "a-2.jpg" for "a.jpg"; the stem is cut where the name would be too long.
std::string numbered(const std::string& name, int number) {
    if (number == 1)
        return name;
    const std::size_t dot = name.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot != 0;
    const std::string tail =
        "-" + std::to_string(number) + (hasExtension ? name.substr(dot) : std::string());
    std::string stem = hasExtension ? name.substr(0, dot) : name;
    if (stem.size() + tail.size() > kLongestName && tail.size() < kLongestName) {
        stem.resize(kLongestName - tail.size());
        // Not in the middle of a character.
        while (!stem.empty() && (static_cast<unsigned char>(stem.back()) & 0xC0) == 0x80)
            stem.pop_back();
        if (!stem.empty() && static_cast<unsigned char>(stem.back()) >= 0xC0)
            stem.pop_back();
    }
    return stem + tail;
}

bool isThisFile(const struct stat& info, const ImportObject& object) {
    const bool isLikeIt =
        S_ISREG(info.st_mode) && static_cast<std::uint64_t>(info.st_size) == object.size;
    return isLikeIt && (object.modified == 0 || isSameDate(info.st_mtime, object.modified));
}

ImportPlace failed(const std::string& path, int number) {
    return {{}, false, "cannot write \"" + path + "\": " + std::strerror(number)};
}

}  // namespace

bool isPlainName(const std::string& name) {
    return !name.empty() && name[0] != '.' && name.size() <= kLongestName &&
           name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
}

bool isSameDate(std::int64_t date, std::int64_t told) {
    constexpr std::int64_t kHour = 3600;
    constexpr std::int64_t kLargestShift = 25 * kHour;
    constexpr std::int64_t kPrecision = 2;
    if (date < told - kLargestShift - kPrecision || date > told + kLargestShift + kPrecision)
        return false;
    const std::int64_t rest = std::abs(date - told) % kHour;
    return rest <= kPrecision || rest >= kHour - kPrecision;
}

ImportPlace ImportPlaces::choose(const std::string& subfolder, const ImportObject& object) {
    if (!isPlainName(object.name))
        return {{}, false, "its name cannot be a file's here"};
    const std::string folder = subfolder.empty() ? _folder : _folder + "/" + subfolder;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        return failed(folder, error.value());
    for (int number = 1; number < kMostOfAName; ++number) {
        const std::string path = folder + "/" + numbered(object.name, number);
        if (_taken.contains(path))
            continue;
        struct stat info {};
        const bool isFree = lstat(path.c_str(), &info) != 0;
        if (isFree && errno != ENOENT)
            return failed(path, errno);
        if (!isFree && !isThisFile(info, object))
            continue;
        _taken.insert(path);
        return {path, !isFree, {}};
    }
    return failed(folder + "/" + object.name, EEXIST);
}

}  // namespace tav::ula
