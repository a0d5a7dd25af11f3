// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace cf::plist {

bool isUtf8(std::string_view bytes);

/// Turns a file's bytes into UTF-8 without a byte order mark: from the encoding that a mark or an
/// XML declaration tells, else they are UTF-8 already. `text` is a part of `bytes` or lies in
/// `storage`.
/// Fails: false, the reason in `reason`.
bool decodeText(std::string_view bytes, std::string& storage, std::string_view& text,
                std::string& reason);

/// Appends a character. What is none, such as half of a surrogate pair, becomes U+FFFD.
void appendCharacter(std::string& text, std::uint32_t character);

inline bool isBlank(char byte) {
    return byte == ' ' || byte == '\n' || byte == '\t' || byte == '\r';
}

}  // namespace cf::plist
