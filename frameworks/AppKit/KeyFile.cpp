// SPDX-License-Identifier: MIT
#include "AppKit/KeyFile.h"

#include <algorithm>
#include <charconv>
#include <glib.h>

namespace appkit {

void KeyFile::Free::operator()(GKeyFile* file) const {
    g_key_file_free(file);
}

KeyFile::KeyFile() : _file(g_key_file_new()) {
}

bool KeyFile::read(const std::string& path) {
    return g_key_file_load_from_file(_file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr);
}

std::string KeyFile::text(const std::string& group, const char* key) const {
    char* value = g_key_file_get_string(_file.get(), group.c_str(), key, nullptr);
    std::string text = value != nullptr ? value : "";
    g_free(value);
    return text;
}

std::vector<std::string> KeyFile::list(const std::string& group, const char* key) const {
    std::vector<std::string> items;
    std::string rest = text(group, key) + ",";
    for (size_t begin = 0, end; (end = rest.find(',', begin)) != std::string::npos;
         begin = end + 1) {
        std::string item = rest.substr(begin, end - begin);
        item.erase(0, item.find_first_not_of(' '));
        if (!item.empty())
            items.push_back(item);
    }
    return items;
}

int KeyFile::number(const std::string& group, const char* key, int otherwise) const {
    std::string digits = text(group, key);
    constexpr int largest = 1 << 14;
    int value = otherwise;
    auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return result.ec == std::errc() ? std::clamp(value, 0, largest) : otherwise;
}

}  // namespace appkit
