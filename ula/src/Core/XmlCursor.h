// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FastString.h"
#include "ula/foundation/xml/XmlCharacters.h"
#include "ula/foundation/xml/XmlText.h"

#include <cstdint>
#include <string_view>

namespace tav::ula {

/// Reads the text of a file of which every byte is a part of a character.
/// Fails: false; why is for other readers to say.
inline bool readCleanText(const FastString& path, xml::XmlText& text) {
    xml::XmlError ignored;
    return xml::readXmlFile(path, text, ignored) &&
           xml::findInvalidCharacter(text.view()) == FastString::npos;
}

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
    /// Reads on to the byte `end`, from where the first reference stands, decoding in place: a
    /// reference is never shorter than its character. `content` is what was read since `begin`.
    /// Fails: false at a reference that is none, and at what `isPlain` says is not to stand there.
    template <class IsPlain>
    bool decodeTo(char end, IsPlain isPlain, char* begin, std::string_view& content) {
        char* out = _next;
        while (_next < _end && *_next != end) {
            if (*_next != '&') {
                if (!isPlain(*_next))
                    return false;
                *out++ = *_next++;
                continue;
            }
            std::uint32_t code = 0;
            const std::size_t length = xml::decodeReference(rest(), code);
            if (length == 0)
                return false;
            out = xml::encodeCharacter(code, out);
            _next += length;
        }
        content = {begin, static_cast<std::size_t>(out - begin)};
        return true;
    }
    FastString share(std::string_view content) const {
        return _text.share(content.data(), content.size());
    }

    const xml::XmlText& _text;
    char* _next;
    char* _end;
};

}  // namespace tav::ula
