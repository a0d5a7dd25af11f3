// SPDX-License-Identifier: MIT
#include "ula/foundation/text/FastString.h"

#include "ula/foundation/debug/Assertion.h"

#include <cstring>
#include <ostream>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace tav::text {

namespace {

constexpr const char* kSource = "text/FastString";

std::size_t lengthOf(const char* zeroTerminated, int line, const char* condition) {
    if (zeroTerminated)
        return std::strlen(zeroTerminated);
    debug::assertionFailed(kSource, line, condition);
    return 0;
}

std::size_t lengthOfArgument(const char* zeroTerminated) {
    return lengthOf(zeroTerminated, 148, "str != 0");
}

}  // namespace

FastString<char>::FastString(const char* zeroTerminated)
    : FastString(zeroTerminated, lengthOf(zeroTerminated, 112, "szstr != 0")) {
}

FastString<char>::FastString(const char* bytes, std::size_t length)
    : _data(bytes), _length(length), _owner(nullptr) {
    copyBytes();
}

FastString<char>& FastString<char>::operator=(const char* zeroTerminated) {
    FastString copy(zeroTerminated, lengthOfArgument(zeroTerminated));
    swap(copy);
    return *this;
}

void FastString<char>::copyBytes() {
    if (_length == 0)
        return forget();
    StringBuffer* buffer = StringBuffer::create(_length);
    std::memcpy(buffer->bytes(), _data, _length);
    _data = buffer->bytes();
    _owner = buffer;
}

FastString<char> FastString<char>::substr(std::size_t begin, std::size_t length) const {
    const std::size_t rest = begin <= _length ? _length - begin : 0;
    if (begin > _length)
        debug::assertionFailed(kSource, 203, "begin <= src.length()");
    if (length != npos && (begin > _length || length > rest))
        debug::assertionFailed(kSource, 204, "len == npos || begin+len <= src.length()");

    const std::size_t available = length < rest ? length : rest;
    if (available == 0)
        return FastString();
    // A part of a borrowed string would dangle just as quietly: it gets bytes of its own.
    if (isBorrowed())
        return FastString(_data + begin, available);
    FastString part(_data + begin, available, _owner);
    part.takeReference();
    return part;
}

std::size_t FastString<char>::find(char byte, std::size_t offset) const {
    if (offset > _length) {
        debug::assertionFailed(kSource, 309, "offset <= _length");
        return npos;
    }
    return view().find(byte, offset);
}

std::size_t FastString<char>::find(const char* zeroTerminated, std::size_t offset) const {
    const std::size_t length = lengthOfArgument(zeroTerminated);
    if (offset > _length) {
        debug::assertionFailed(kSource, 309, "offset <= _length");
        return npos;
    }
    return length == 0 ? offset : view().find(zeroTerminated, offset, length);
}

int FastString<char>::compare(const char* zeroTerminated) const {
    const std::size_t length = lengthOfArgument(zeroTerminated);
    return detail::compareSignedBytes(_data, _length, zeroTerminated, length);
}

FastString<char> operator+(const FastString<char>& left, const FastString<char>& right) {
    StringBuffer* buffer = StringBuffer::create(left.length() + right.length());
    std::memcpy(buffer->bytes(), left.data(), left.length());
    std::memcpy(buffer->bytes() + left.length(), right.data(), right.length());
    // The new string takes over the buffer's first reference.
    return FastString<char>(buffer->bytes(), left.length() + right.length(), buffer);
}

std::ostream& operator<<(std::ostream& stream, const FastString<char>& text) {
    return stream << text.view();
}

}  // namespace tav::text

std::size_t std::hash<tav::text::FastString<char>>::operator()(
    const tav::text::FastString<char>& text) const noexcept {
    // Seeded with an address that differs between processes, so that a file cannot be written
    // whose names all collide.
    static const char anchor = 0;
    const auto seed = reinterpret_cast<std::uintptr_t>(&anchor);
    return XXH3_64bits_withSeed(text.data(), text.length(), seed);
}
