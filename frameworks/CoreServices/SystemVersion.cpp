// SPDX-License-Identifier: MIT
#include "CoreServices/SystemVersion.h"

#include <charconv>
#include <fstream>
#include <sys/utsname.h>

namespace coreservices {

namespace {

constexpr int32_t kLatestPacked = 0x9999;

/// Takes a number from the front of the text, and a dot behind it.
std::optional<int32_t> takeNumber(std::string_view& text) {
    int32_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number < 0)
        return std::nullopt;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    if (text.starts_with('.'))
        text.remove_prefix(1);
    else
        text = {};
    return number;
}

std::string_view withoutQuotes(std::string_view text) {
    const bool isQuoted = text.size() >= 2 && (text.front() == '"' || text.front() == '\'') &&
                          text.back() == text.front();
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

std::optional<SystemVersion> versionOfRelease(const std::string& path) {
    constexpr std::string_view kKey = "VERSION_ID=";
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(kKey))
            return parseSystemVersion(withoutQuotes(std::string_view(line).substr(kKey.size())));
    return std::nullopt;
}

std::optional<SystemVersion> versionOfKernel() {
    utsname names{};
    return uname(&names) == 0 ? parseSystemVersion(names.release) : std::nullopt;
}

}  // namespace

std::optional<SystemVersion> parseSystemVersion(std::string_view text) {
    const std::optional<int32_t> major = takeNumber(text);
    if (!major)
        return std::nullopt;
    const int32_t minor = takeNumber(text).value_or(0);
    return SystemVersion{*major, minor, takeNumber(text).value_or(0)};
}

std::optional<SystemVersion> readSystemVersion(const std::string& root) {
    // The second is the distribution's, the first what the machine's owner makes of it.
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"})
        if (const auto version = versionOfRelease(root + path))
            return version;
    return versionOfKernel();
}

int32_t packedForm(const SystemVersion& version) {
    if (version.major > 99 || version.minor > 9 || version.bugFix > 9)
        return kLatestPacked;
    return version.major / 10 << 12 | version.major % 10 << 8 | version.minor << 4 | version.bugFix;
}

}  // namespace coreservices
