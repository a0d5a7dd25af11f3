// SPDX-License-Identifier: MIT
#include "Security/Authorization/Messages.h"

#include <cerrno>
#include <cstdint>
#include <unistd.h>

namespace security {

namespace {

// More than the system takes for a command.
constexpr uint32_t kLongest = 1 << 22;

}  // namespace

bool readBytes(int descriptor, void* bytes, size_t size) {
    char* next = static_cast<char*>(bytes);
    while (size > 0) {
        const ssize_t count = read(descriptor, next, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        next += count;
        size -= static_cast<size_t>(count);
    }
    return true;
}

bool writeBytes(int descriptor, const void* bytes, size_t size) {
    const char* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t count = write(descriptor, next, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        next += count;
        size -= static_cast<size_t>(count);
    }
    return true;
}

std::string requestOf(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text.append(word.c_str(), word.size() + 1);
    const auto length = static_cast<uint32_t>(text.size());
    return std::string(reinterpret_cast<const char*>(&length), sizeof length) + text;
}

std::vector<std::string> readRequest(int descriptor) {
    uint32_t length = 0;
    if (!readBytes(descriptor, &length, sizeof length) || length == 0 || length > kLongest)
        return {};
    std::string text(length, '\0');
    if (!readBytes(descriptor, text.data(), length) || text.back() != '\0')
        return {};
    std::vector<std::string> words;
    for (size_t at = 0; at < text.size(); at += words.back().size() + 1)
        words.emplace_back(text.c_str() + at);
    return words;
}

}  // namespace security
