// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace tav::tool {

/// The text with everything that could steer a terminal, or is no UTF-8, written as an escape.
std::string displayText(std::string_view text);
/// The same between double quotes, quotes and backslashes escaped.
std::string quotedText(std::string_view text);
/// The text with every byte that is no UTF-8 written as an escape, "\xff", and nothing else.
std::string validText(std::string_view text);

/// The columns that a text made by `displayText` takes on a terminal.
std::size_t displayWidth(std::string_view text);
/// The columns of the widest text that `textOf` makes of what is in the range; 0 for an empty one.
template <class Range, class TextOf>
std::size_t widestOf(const Range& range, const TextOf& textOf) {
    std::size_t width = 0;
    for (const auto& each : range)
        width = std::max(width, displayWidth(textOf(each)));
    return width;
}
/// The text, cut to `width` columns with "…" at its end when it takes more.
std::string cutToWidth(const std::string& text, std::size_t width);
/// The text with blanks up to `width` columns; at least one blank.
std::string padded(const std::string& text, std::size_t width);

}  // namespace tav::tool
