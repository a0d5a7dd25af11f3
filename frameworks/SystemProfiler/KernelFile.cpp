// SPDX-License-Identifier: MIT
#include "SystemProfiler/KernelFile.h"

#include "CoreFoundation/FolderStream.h"
#include "CoreFoundation/WholeContent.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <memory>

namespace systemprofiler {

namespace {

constexpr std::string_view kBlanks(" \t\r\n\0", 5);

std::string_view trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == text.npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

}  // namespace

std::string readKernelFile(const std::string& path) {
    const cf::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file)
        return {};
    std::string text = cf::readUpTo(file.get(), SIZE_MAX);
    text.resize(text.find_last_not_of(kBlanks) + 1);
    return text;
}

std::optional<uint64_t> numberOf(std::string_view text) {
    const int base = text.starts_with("0x") ? 16 : 10;
    if (base == 16)
        text.remove_prefix(2);
    uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

std::optional<uint64_t> readKernelNumber(const std::string& path) {
    return numberOf(readKernelFile(path));
}

void forEachPair(std::string_view text, char separator,
                 const std::function<void(std::string_view key, std::string_view value)>& line) {
    while (!text.empty()) {
        const size_t end = text.find('\n');
        const std::string_view whole = text.substr(0, end);
        const size_t middle = whole.find(separator);
        if (middle == whole.npos)
            line({}, {});
        else
            line(trimmed(whole.substr(0, middle)), trimmed(whole.substr(middle + 1)));
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    const cf::FolderStream list(opendir(folder.c_str()));
    while (const dirent* entry = list ? readdir(list.get()) : nullptr)
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    std::sort(names.begin(), names.end(), [](const std::string& left, const std::string& right) {
        return strverscmp(left.c_str(), right.c_str()) < 0;
    });
    return names;
}

}  // namespace systemprofiler
