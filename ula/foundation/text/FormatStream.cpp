// SPDX-License-Identifier: MIT
#include "ula/foundation/text/FormatStream.h"

#include <cstring>

namespace tav::text {

namespace {

constexpr const char* kPlaceholder = "%*";

}  // namespace

FormatStream::FormatStream(const char* format, Finish finish)
    : _rest(format ? format : ""), _finish(std::move(finish)) {
}

FormatStream::~FormatStream() {
    try {
        _finish(_text + _rest);
    } catch (...) {
        // A line that cannot be delivered must not end the program that wanted to report.
    }
}

const FormatStream& FormatStream::add(const String& argument) const {
    const char* placeholder = std::strstr(_rest, kPlaceholder);
    if (placeholder) {
        _text.append(_rest, placeholder);
        _rest = placeholder + std::strlen(kPlaceholder);
    } else {
        _text.append(_rest).append(" ");
        _rest = "";
    }
    _text.append(argument.view());
    return *this;
}

}  // namespace tav::text
