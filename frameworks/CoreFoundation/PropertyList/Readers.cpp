// SPDX-License-Identifier: MIT
#include "Readers.h"

#include "Text.h"

#include <algorithm>
#include <array>

namespace cf::plist {

namespace {

/// An old-style list may begin with "<", too: with data.
bool looksLikeXml(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    constexpr std::array<std::string_view, 13> kBegins = {
        "<?",    "<!",    "<plist", "<dict", "<array", "<string", "<integer",
        "<real", "<true", "<false", "<date", "<data>", "<data/"};
    return std::any_of(kBegins.begin(), kBegins.end(),
                       [&](std::string_view begin) { return text.starts_with(begin); });
}

}  // namespace

std::string errorAt(std::string_view text, std::size_t position, const std::string& reason) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(position, text.size()));
    return "line " + std::to_string(1 + std::count(text.begin(), end, '\n')) + ": " + reason;
}

Object readPropertyList(std::string_view bytes, ObjectFactory& factory, Format& format,
                        std::string& error) {
    if (bytes.empty()) {
        error = "there is nothing in it";
        return nullptr;
    }
    if (bytes.starts_with("bplist")) {
        format = Format::Binary;
        return readBinary(bytes, factory, error);
    }
    std::string storage;
    std::string_view text;
    error.clear();
    if (!decodeText(bytes, storage, text, error))
        return nullptr;
    format = looksLikeXml(text) ? Format::Xml : Format::OldStyle;
    return format == Format::Xml ? readXml(text, factory, error)
                                 : readOldStyle(text, factory, error);
}

}  // namespace cf::plist
