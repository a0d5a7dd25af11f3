// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"
#include "ula/foundation/xml/XmlException.h"

#include <cstring>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace tav::xml {

/// Gathers the text of a document and hands it on in large pieces. For writers that know their
/// markup by heart; `XmlWriter` is the one for all others.
///
/// Thread: one thread uses one object.
/// Fails: what the sink throws passes through.
class TAV_FOUNDATION_API XmlOutput {
public:
    /// Receives the text piece by piece.
    using Sink = std::function<void(std::string_view text)>;

    explicit XmlOutput(Sink sink);

    /// Appends a text as it stands.
    void append(std::string_view text) {
        if (text.size() > kSize - _used)
            return appendLong(text);
        std::memcpy(_buffer.get() + _used, text.data(), text.size());
        _used += text.size();
    }
    /// Appends what stands between an attribute's quotes, or between tags. `attributeName` is for
    /// the message; empty for what is no attribute's.
    /// Fails: throws `XmlException` for a value that XML cannot carry: control characters other
    /// than tab and line ends, U+FFFE, U+FFFF, bytes that are not UTF-8.
    void appendValue(std::string_view attributeName, const String& value);
    void appendValue(std::string_view attributeName, int value);
    void appendValue(std::string_view attributeName, double value);

    /// Hands on what has been gathered. To be called last; without it the rest is dropped.
    void flush() { _sink({_buffer.get(), std::exchange(_used, 0)}); }

private:
    static constexpr std::size_t kSize = 64 << 10;

    void appendLong(std::string_view text);
    char* room(std::size_t size);

    Sink _sink;
    std::unique_ptr<char[]> _buffer;
    std::size_t _used = 0;
};

}  // namespace tav::xml
