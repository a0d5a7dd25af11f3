// SPDX-License-Identifier: MIT
#include "AppKit/TrashInfo.h"

#include "CoreFoundation/PercentEscapes.h"

#include <algorithm>
#include <random>

namespace appkit {

namespace {

constexpr unsigned kNumberedAttempts = 32;
constexpr size_t kLongestExtension = 24;

// The dot of a dot file begins no extension.
size_t extensionStart(std::string_view leaf) {
    size_t dot = leaf.rfind('.');
    bool usable = dot != std::string_view::npos && dot > 0 && leaf.size() - dot < kLongestExtension;
    return usable ? dot : leaf.size();
}

// Never longer than `length`, and shorter rather than ending within a character; bytes that are no
// UTF-8 are cut anywhere.
std::string_view cutTo(std::string_view text, size_t length) {
    if (text.size() <= length)
        return text;
    size_t end = length;
    while (end > 0 && length - end < 3 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    bool withinCharacter = (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80;
    return text.substr(0, withinCharacter ? length : end);
}

// Numbers first, for people; where many items of one name are trashed, a number drawn at random
// saves trying each.
std::string distinction(unsigned attempt) {
    if (attempt == 0)
        return {};
    if (attempt < kNumberedAttempts)
        return " " + std::to_string(attempt + 1);
    return " " + std::to_string(std::random_device()());
}

}  // namespace

std::string trashInfoText(std::string_view originalPath, std::time_t when) {
    std::tm local{};
    localtime_r(&when, &local);
    char date[32];
    size_t length = std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    return "[Trash Info]\nPath=" + cf::percentEncoded(originalPath) +
           "\nDeletionDate=" + std::string(date, length) + "\n";
}

std::optional<TrashInfo> parseTrashInfo(std::string_view text) {
    TrashInfo info;
    bool inSection = false;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        if (!line.empty() && line[0] == '[')
            inSection = line == "[Trash Info]";
        // The first of each counts.
        else if (inSection && line.substr(0, 5) == "Path=" && info.path.empty())
            info.path = cf::percentDecoded(line.substr(5));
        else if (inSection && line.substr(0, 13) == "DeletionDate=" && info.date.empty())
            info.date = line.substr(13);
    }
    if (info.path.empty() || info.path.find('\0') != std::string::npos)
        return std::nullopt;
    return info;
}

std::string trashName(std::string_view leaf, unsigned attempt, size_t maxLength) {
    size_t dot = extensionStart(leaf);
    std::string end = distinction(attempt) + std::string(leaf.substr(dot));
    size_t taken = end.size() + kTrashInfoSuffix.size();
    size_t room = maxLength > taken ? maxLength - taken : 1;
    return std::string(cutTo(leaf.substr(0, dot), room)) + end;
}

}  // namespace appkit
