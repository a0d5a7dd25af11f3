// SPDX-License-Identifier: MIT
#include "CoreServices/MountInfo.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <optional>
#include <sstream>
#include <sys/stat.h>

namespace coreservices {

namespace {

bool isOctal(char c) {
    return c >= '0' && c <= '7';
}

// The kernel writes blanks, tabs, newlines, backslashes and "#" as a backslash and three digits.
std::string unescape(std::string_view field) {
    std::string text;
    for (size_t i = 0; i < field.size(); ++i) {
        bool escaped = field[i] == '\\' && i + 3 < field.size() &&
                       std::all_of(&field[i + 1], &field[i + 1] + 3, isOctal);
        if (!escaped) {
            text += field[i];
            continue;
        }
        text += static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                  (field[i + 3] - '0'));
        i += 3;
    }
    return text;
}

std::vector<std::string_view> splitFields(std::string_view line) {
    std::vector<std::string_view> fields;
    while (!line.empty()) {
        size_t end = std::min(line.find(' '), line.size());
        if (end > 0)
            fields.push_back(line.substr(0, end));
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    return fields;
}

bool readNumber(std::string_view field, uint64_t& number) {
    auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
    return error == std::errc() && end == field.data() + field.size();
}

// Whether "ro" is one of the options, which are separated by commas.
bool saysReadOnly(std::string_view options) {
    while (!options.empty()) {
        size_t end = std::min(options.find(','), options.size());
        if (options.substr(0, end) == "ro")
            return true;
        options.remove_prefix(std::min(end + 1, options.size()));
    }
    return false;
}

// id, parent, major:minor, root, point, options, optional fields, "-", type, source, options
std::optional<Mount> parseLine(std::string_view line) {
    std::vector<std::string_view> fields = splitFields(line);
    auto separator = std::find(fields.begin(), fields.end(), "-");
    if (separator - fields.begin() < 6 || fields.end() - separator < 3)
        return std::nullopt;
    Mount mount;
    if (!readNumber(fields[0], mount.id) || !readNumber(fields[1], mount.parent))
        return std::nullopt;
    mount.device = fields[2];
    mount.root = unescape(fields[3]);
    mount.point = unescape(fields[4]);
    mount.type = unescape(separator[1]);
    mount.source = unescape(separator[2]);
    bool ofFileSystem = fields.end() - separator > 3 && saysReadOnly(separator[3]);
    mount.isReadOnly = ofFileSystem || saysReadOnly(fields[5]);
    return mount;
}

}  // namespace

std::vector<Mount> parseMountInfo(std::string_view text) {
    std::vector<Mount> mounts;
    while (!text.empty()) {
        size_t end = std::min(text.find('\n'), text.size());
        if (std::optional<Mount> mount = parseLine(text.substr(0, end)))
            mounts.push_back(std::move(*mount));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return mounts;
}

bool isMountRoot(const struct ::statx& item) {
    return (item.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

std::string readMountInfo() {
    std::ifstream file("/proc/self/mountinfo");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace coreservices
