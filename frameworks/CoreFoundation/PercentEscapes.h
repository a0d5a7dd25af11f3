// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace cf {

// Negative for what is no hexadecimal digit.
inline int hexadecimalDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// The escapes "%20" undone; a sign that begins no escape stands for itself.
inline std::string percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool whole = text[i] == '%' && i + 2 < text.size();
        const int high = whole ? hexadecimalDigit(text[i + 1]) : -1;
        const int low = whole ? hexadecimalDigit(text[i + 2]) : -1;
        if (high < 0 || low < 0) {
            decoded += text[i];
            continue;
        }
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return decoded;
}

// A path as URLs have it: all but letters, digits and "-._~/" as "%20".
inline std::string percentEncoded(std::string_view path) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : path) {
        const char lower = static_cast<char>(c | 0x20);
        const bool isPlain = (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') ||
                             std::string_view("-._~/").find(c) != std::string_view::npos;
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain)
            encoded += c;
        else
            encoded.append({'%', kDigits[byte >> 4], kDigits[byte & 15]});
    }
    return encoded;
}

}  // namespace cf
