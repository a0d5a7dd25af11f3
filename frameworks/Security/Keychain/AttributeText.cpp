// SPDX-License-Identifier: MIT
#include "Security/Keychain/AttributeText.h"

#include "CoreFoundation/PercentEscapes.h"

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
    return cf::percentDecoded(attribute);
}

}  // namespace security
