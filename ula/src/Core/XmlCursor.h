// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FastString.h"
#include "ula/foundation/xml/XmlText.h"

#include <string_view>

namespace tav::ula {

/// The place of a reader in a document that it decodes where it lies.
/// Lifetime: not beyond the text's; what `share` returns may outlive both.
class XmlCursor {
protected:
    explicit XmlCursor(const xml::XmlText& text)
        : _text(text), _next(text.bytes), _end(text.bytes + text.length) {}
    XmlCursor(const XmlCursor&) = delete;
    XmlCursor& operator=(const XmlCursor&) = delete;
    ~XmlCursor() = default;

    std::string_view rest() const { return {_next, static_cast<std::size_t>(_end - _next)}; }
    void skipBlanks() {
        while (_next < _end &&
               (*_next == '\n' || *_next == '\t' || *_next == ' ' || *_next == '\r'))
            ++_next;
    }
    /// Apart from white space.
    bool atEnd() {
        skipBlanks();
        return _next == _end;
    }
    /// Goes past `markup` if it stands here.
    bool takeHere(std::string_view markup) {
        if (!rest().starts_with(markup))
            return false;
        _next += markup.size();
        return true;
    }
    /// The same, and past white space before it.
    bool take(std::string_view markup) {
        skipBlanks();
        return takeHere(markup);
    }
    FastString share(std::string_view content) const {
        return _text.share(content.data(), content.size());
    }

    const xml::XmlText& _text;
    char* _next;
    char* _end;
};

}  // namespace tav::ula
