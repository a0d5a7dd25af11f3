// SPDX-License-Identifier: MIT
#include "Security/Keychain/AttributeText.h"

#include <glib.h>

namespace security {

std::string attributeText(std::string_view name) {
    const bool isText =
        g_utf8_validate(name.data(), static_cast<gssize>(name.size()), nullptr) != FALSE;
    std::string text;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        char escape[4];
        g_snprintf(escape, sizeof escape, "%%%02X", byte);
        const bool isPlain = byte != 0 && c != '%' && (isText || byte < 0x80);
        text += isPlain ? std::string(1, c) : escape;
    }
    return text;
}

std::string nameOfAttribute(std::string_view attribute) {
    std::string name;
    for (std::size_t i = 0; i < attribute.size(); ++i) {
        const bool isEscape = attribute[i] == '%' && i + 2 < attribute.size() &&
                              g_ascii_isxdigit(attribute[i + 1]) &&
                              g_ascii_isxdigit(attribute[i + 2]);
        if (!isEscape) {
            name += attribute[i];
            continue;
        }
        name += static_cast<char>(g_ascii_xdigit_value(attribute[i + 1]) * 16 +
                                  g_ascii_xdigit_value(attribute[i + 2]));
        i += 2;
    }
    return name;
}

}  // namespace security
