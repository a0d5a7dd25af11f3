// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"
#include "ula/foundation/text/ByteOrder.h"
#include "ula/foundation/text/StringBuffer.h"

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

namespace tav::text {

template <class Char>
class FastString;

/// A byte string, UTF-8 by convention, whose bytes never change in place.
///
/// Three kinds, told apart by what stands behind the bytes:
/// - shared: a counted buffer on the heap; copies and substrings share it, the last one frees it;
/// - static: a view of memory that outlives every string, such as a literal; nothing is counted;
/// - borrowed: a view of memory that somebody else will free; copying or moving the string copies
///   the bytes into a buffer of its own, so that only the borrower itself may dangle.
///
/// The bytes need not be followed by a zero; `thread::ScratchPad::zeroTerminated` makes one so.
///
/// Thread: copies of one string may be made, read and released in any thread.
/// Fails: bad positions and null texts are logged as assertions (source `text/FastString`) and
/// treated as the nearest sensible text: the empty one, or what there is up to the end.
template <>
class TAV_FOUNDATION_API FastString<char> {
public:
    /// As a length: the rest of the string. As a position: not found.
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    constexpr FastString() noexcept : _data(""), _length(0), _owner(nullptr) {}
    /// Copies the text. A null pointer gives the empty string and the assertion of line 112.
    FastString(const char* zeroTerminated);
    FastString(const char* bytes, std::size_t length);
    FastString(const std::string& text) : FastString(text.data(), text.size()) {}
    explicit FastString(std::string_view text) : FastString(text.data(), text.size()) {}
    /// Views `length` bytes from `begin` in `buffer` and takes a reference of its own to it.
    FastString(StringBuffer* buffer, std::size_t begin, std::size_t length)
        : _data(buffer->bytes() + begin), _length(length), _owner(buffer) {
        buffer->retain();
    }

    FastString(const FastString& other)
        : _data(other._data), _length(other._length), _owner(other._owner) {
        takeReference();
    }
    FastString(FastString&& other) noexcept
        : _data(other._data), _length(other._length), _owner(other._owner) {
        if (isBorrowed())
            copyBytes();
        else
            other.forget();
    }
    ~FastString() { dropReference(); }

    FastString& operator=(const FastString& other) {
        FastString copy(other);
        swap(copy);
        return *this;
    }
    FastString& operator=(FastString&& other) noexcept {
        FastString taken(std::move(other));
        swap(taken);
        return *this;
    }
    /// Copies the text. A null pointer gives the empty string and the assertion of line 148.
    FastString& operator=(const char* zeroTerminated);

    /// Views a literal: nothing is copied, counted or freed.
    template <std::size_t Size>
    static FastString literal(const char (&text)[Size]) noexcept {
        return FastString(text, Size - 1, nullptr);
    }
    /// Views memory that lives at least as long as the returned object; see the class comment.
    static FastString borrow(const char* bytes, std::size_t length) noexcept {
        return FastString(bytes, length, borrowedMark());
    }
    static FastString borrow(std::string_view text) noexcept {
        return borrow(text.data(), text.size());
    }

    const char* data() const noexcept { return _data; }
    /// Units: bytes.
    std::size_t length() const noexcept { return _length; }
    std::size_t size() const noexcept { return _length; }
    bool empty() const noexcept { return _length == 0; }
    const char* begin() const noexcept { return _data; }
    const char* end() const noexcept { return _data + _length; }

    /// `length` bytes from `begin`, sharing the buffer. Fails: the assertions of lines 203 and 204;
    /// the part that exists is returned.
    FastString substr(std::size_t begin, std::size_t length = npos) const;
    /// The position of the first `byte` at or after `offset`, or npos. Fails: an offset beyond the
    /// end gives the assertion of line 309 and npos.
    std::size_t find(char byte, std::size_t offset = 0) const;
    /// The same for a text; the assertion of line 148 when it is null.
    std::size_t find(const char* zeroTerminated, std::size_t offset = 0) const;

    std::string toStdString() const { return std::string(_data, _length); }
    std::string_view view() const noexcept { return std::string_view(_data, _length); }

    /// The order of sorted maps: signed bytes, and a prefix before the longer text.
    int compare(const FastString& other) const noexcept {
        return detail::compareSignedBytes(_data, _length, other._data, other._length);
    }
    /// The same against a text; null counts as empty after the assertion of line 148.
    int compare(const char* zeroTerminated) const;

    void swap(FastString& other) noexcept {
        std::swap(_data, other._data);
        std::swap(_length, other._length);
        std::swap(_owner, other._owner);
    }

    friend bool operator==(const FastString& left, const FastString& right) noexcept {
        return left._length == right._length &&
               std::char_traits<char>::compare(left._data, right._data, left._length) == 0;
    }
    friend std::strong_ordering operator<=>(const FastString& left,
                                            const FastString& right) noexcept {
        return left.compare(right) <=> 0;
    }
    friend bool operator<(const FastString& left, const FastString& right) noexcept {
        return left.compare(right) < 0;
    }
    friend bool operator==(const FastString& left, const char* right) {
        return left.compare(right) == 0;
    }
    friend TAV_FOUNDATION_API FastString operator+(const FastString& left, const FastString& right);
    friend TAV_FOUNDATION_API std::ostream& operator<<(std::ostream& stream,
                                                       const FastString& text);

private:
    constexpr FastString(const char* bytes, std::size_t length, StringBuffer* owner) noexcept
        : _data(bytes), _length(length), _owner(owner) {}

    /// Not a buffer: the mark of a borrowed string.
    static StringBuffer* borrowedMark() noexcept { return reinterpret_cast<StringBuffer*>(1); }
    bool isBorrowed() const noexcept { return _owner == borrowedMark(); }
    bool isShared() const noexcept { return reinterpret_cast<std::uintptr_t>(_owner) > 1; }

    void takeReference() {
        if (isShared())
            _owner->retain();
        else if (isBorrowed())
            copyBytes();
    }
    void dropReference() {
        if (isShared())
            _owner->release();
    }
    void forget() noexcept {
        _data = "";
        _length = 0;
        _owner = nullptr;
    }
    /// Replaces the view by a buffer of its own with the same bytes.
    void copyBytes();

    const char* _data;
    std::size_t _length;
    StringBuffer* _owner;
};

}  // namespace tav::text

namespace tav {

/// The name under which the foundation's own headers speak of its string.
using String = text::FastString<char>;

}  // namespace tav

namespace std {

template <>
struct hash<tav::text::FastString<char>> {
    TAV_FOUNDATION_API size_t operator()(const tav::text::FastString<char>& text) const noexcept;
};

}  // namespace std
