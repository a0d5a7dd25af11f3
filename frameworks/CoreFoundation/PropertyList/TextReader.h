// SPDX-License-Identifier: MIT
#pragma once

#include "ObjectStack.h"

#include <string>
#include <string_view>

namespace cf::plist {

/// What the readers of both textual forms have in common: a place in the text, the objects made so
/// far, and the reason for which reading ended.
class TextReader {
public:
    TextReader(const TextReader&) = delete;
    TextReader& operator=(const TextReader&) = delete;

    /// The whole text.
    /// Fails: null, the reason in `error`.
    Object read(std::string& error);

protected:
    TextReader(std::string_view text, ObjectFactory& factory)
        : _text(text), _factory(factory), _stack(factory) {}
    ~TextReader() = default;

    virtual Object readRoot() = 0;
    /// And whatever else may stand between objects.
    virtual bool skipBlanks() = 0;

    bool atEnd() const { return _next == _text.size(); }
    bool startsHere(std::string_view markup) const {
        return _text.substr(_next).starts_with(markup);
    }
    bool startsHere(char byte) const { return !atEnd() && _text[_next] == byte; }
    /// Goes past it if it stands here.
    bool take(std::string_view markup) {
        const bool is = startsHere(markup);
        _next += is ? markup.size() : 0;
        return is;
    }
    bool take(char byte) { return take(std::string_view(&byte, 1)); }

    /// Remembers the first reason, which is the innermost. False.
    bool fail(const std::string& reason);
    /// The same. Null.
    Object failed(const std::string& reason);

    std::string_view _text;
    ObjectFactory& _factory;
    ObjectStack _stack;
    std::size_t _next = 0;
    /// Content that is not spelt as it reads.
    std::string _decoded;

private:
    std::string _error;
};

}  // namespace cf::plist
