// SPDX-License-Identifier: MIT
// A binary list: "bplist00", the objects, the table of their offsets, and a trailer of 32 bytes.
// Containers hold numbers into the table, so objects may be shared, and a broken list may refer to
// anything. Each object is read once. The objects together must not be larger than the file, or
// many of them could be laid over the same large one; and a list must not unfold, with each object
// wherever it is referred to, to more than a text of it might be.
#include "ObjectStack.h"
#include "Readers.h"
#include "Text.h"

#include <bit>
#include <optional>
#include <vector>

namespace cf::plist {

namespace {

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kTrailerSize = 32;
/// So much of a file may be read twice: writers have been known to share more than whole objects.
constexpr std::size_t kOverlap = 4;
/// About what an object takes in the form of text, beside its contents.
constexpr std::uint32_t kObjectWeight = 32;
constexpr std::uint32_t kLargestWeight = 256U << 20;

class BinaryReader {
public:
    BinaryReader(std::string_view bytes, ObjectFactory& factory)
        : _bytes(bytes), _factory(factory), _stack(factory), _budget(kOverlap * bytes.size()) {}
    ~BinaryReader() {
        for (const Known& known : _known)
            if (known.object != nullptr)
                _factory.release(known.object);
    }
    BinaryReader(const BinaryReader&) = delete;
    BinaryReader& operator=(const BinaryReader&) = delete;

    Object read(std::string& error);

private:
    /// An object that was read, or is being read.
    struct Known {
        Object object = nullptr;
        std::uint32_t weight = 0;  ///< unfolded
        bool isOpen = false;
        bool isString = false;
    };
    /// The head of an object: what kind it is, and how much of it there is.
    struct Head {
        unsigned kind = 0;
        unsigned low = 0;
        std::size_t count = 0;
        std::size_t body = 0;
    };

    bool readTrailer();
    Object readObject(std::uint64_t number, int depth);
    bool readHead(std::size_t offset, Head& head);
    bool readCount(Head& head);
    Object makeObject(const Head& head, int depth, std::uint32_t& weight);
    Object makeBytes(const Head& head);
    Object makeSimple(const Head& head);
    Object makeInteger(const Head& head);
    Object makeReal(const Head& head);
    Object makeUtf16(const Head& head);
    Object makeContainer(const Head& head, int depth, std::uint32_t& weight);
    bool pushMember(std::uint64_t number, bool isKey, int depth, std::uint32_t& weight);

    /// A big-endian number. Its place has been checked.
    std::uint64_t number(std::size_t offset, std::size_t size) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | static_cast<unsigned char>(_bytes[offset + i]);
        return value;
    }
    /// Whether there are so many pieces of this size at that place, among the objects. They are
    /// taken off what may still be read.
    bool isThere(std::size_t offset, std::size_t count, std::size_t size) {
        if (offset > _end || count > (_end - offset) / size || count * size > _budget)
            return false;
        _budget -= count * size;
        return true;
    }
    Object failed(const char* reason) {
        if (_error.empty())
            _error = reason;
        return nullptr;
    }

    std::string_view _bytes;
    ObjectFactory& _factory;
    ObjectStack _stack;
    std::vector<Known> _known;
    std::size_t _budget;
    std::size_t _end = 0;  ///< of the objects: where their table begins
    std::size_t _offsetSize = 0;
    std::size_t _referenceSize = 0;
    std::uint64_t _top = 0;
    std::string _error;
    std::string _decoded;
};

Object BinaryReader::read(std::string& error) {
    const Object root = readTrailer() ? readObject(_top, 0) : failed("a broken binary list");
    if (root == nullptr)
        error = _error;
    return root;
}

bool BinaryReader::readTrailer() {
    if (_bytes.size() < kHeaderSize + kTrailerSize || !_bytes.starts_with("bplist0"))
        return false;
    const std::size_t trailer = _bytes.size() - kTrailerSize;
    _offsetSize = number(trailer + 6, 1);
    _referenceSize = number(trailer + 7, 1);
    const std::uint64_t count = number(trailer + 8, 8);
    _top = number(trailer + 16, 8);
    const std::uint64_t table = number(trailer + 24, 8);
    if (_offsetSize < 1 || _offsetSize > 8 || _referenceSize < 1 || _referenceSize > 8)
        return false;
    if (table < kHeaderSize || table > trailer || count > (trailer - table) / _offsetSize)
        return false;
    _end = table;
    _known.resize(count);
    return true;
}

/// The caller owns what it gets.
Object BinaryReader::readObject(std::uint64_t number, int depth) {
    if (number >= _known.size())
        return failed("a reference to an object that is not there");
    Known& known = _known[number];
    if (known.isOpen)
        return failed("an object within itself");
    if (known.object != nullptr)
        return _factory.retain(known.object);
    if (depth > kDeepestNesting)
        return failed("too many levels");
    const std::uint64_t offset = this->number(_end + number * _offsetSize, _offsetSize);
    Head head;
    known.isOpen = true;
    if (!readHead(offset, head))
        return failed("an object outside the list");
    const Object made = makeObject(head, depth, known.weight);
    known.isOpen = false;
    if (made == nullptr)
        return failed("an object that is broken or unknown");
    known.isString = head.kind >= 0x5 && head.kind <= 0x7;
    known.object = made;
    return _factory.retain(made);
}

bool BinaryReader::readHead(std::size_t offset, Head& head) {
    if (offset < kHeaderSize || !isThere(offset, 1, 1))
        return false;
    const std::uint64_t first = number(offset, 1);
    head.kind = static_cast<unsigned>(first >> 4);
    head.low = static_cast<unsigned>(first & 0xF);
    head.count = head.low;
    head.body = offset + 1;
    // Of numbers the lower bits tell the size.
    return head.kind < 0x4 || head.kind == 0x8 || head.low != 0xF || readCount(head);
}

/// A large count follows as an integer.
bool BinaryReader::readCount(Head& head) {
    if (!isThere(head.body, 1, 1))
        return false;
    const std::uint64_t first = number(head.body, 1);
    const std::size_t size = std::size_t{1} << (first & 0xF);
    if (first >> 4 != 0x1 || size > 8 || !isThere(head.body + 1, size, 1))
        return false;
    head.count = number(head.body + 1, size);
    head.body += 1 + size;
    return true;
}

Object BinaryReader::makeObject(const Head& head, int depth, std::uint32_t& weight) {
    weight = kObjectWeight;
    switch (head.kind) {
    case 0x0:
        return makeSimple(head);
    case 0x1:
        return makeInteger(head);
    case 0x2:
    case 0x3:
        return makeReal(head);
    case 0xA:
    case 0xC:
    case 0xD:
        return makeContainer(head, depth, weight);
    default:
        break;
    }
    if (head.count > kLargestWeight)
        return nullptr;
    weight += static_cast<std::uint32_t>(head.count);
    return head.kind == 0x6 ? makeUtf16(head) : makeBytes(head);
}

Object BinaryReader::makeBytes(const Head& head) {
    if ((head.kind != 0x4 && head.kind != 0x5 && head.kind != 0x7) ||
        !isThere(head.body, head.count, 1))
        return nullptr;
    const std::string_view bytes = _bytes.substr(head.body, head.count);
    if (head.kind == 0x4)
        return _factory.data(bytes);
    return isUtf8(bytes) ? _factory.string(bytes) : nullptr;
}

Object BinaryReader::makeSimple(const Head& head) {
    return head.low == 0x8 || head.low == 0x9 ? _factory.boolean(head.low == 0x9) : nullptr;
}

/// Of eight bytes and more they have a sign.
Object BinaryReader::makeInteger(const Head& head) {
    const std::size_t size = std::size_t{1} << head.low;
    if (size > 16 || !isThere(head.body, size, 1))
        return nullptr;
    if (size < 16)
        return _factory.integer(static_cast<std::int64_t>(number(head.body, size)));
    const std::uint64_t high = number(head.body, 8);
    const std::uint64_t low = number(head.body + 8, 8);
    const bool isNegative = low >> 63 != 0;
    if (high == 0 && isNegative)
        return _factory.unsignedInteger(low);
    // Any other needs more than 64 bits.
    const std::uint64_t sign = isNegative ? ~std::uint64_t{0} : 0;
    return high == sign ? _factory.integer(static_cast<std::int64_t>(low)) : nullptr;
}

Object BinaryReader::makeReal(const Head& head) {
    const std::size_t size = std::size_t{1} << head.low;
    if ((size != 4 && size != 8) || !isThere(head.body, size, 1))
        return nullptr;
    const std::uint64_t bits = number(head.body, size);
    if (head.kind == 0x3)
        return size == 8 ? _factory.date(std::bit_cast<double>(bits)) : nullptr;
    return size == 4 ? _factory.shortReal(std::bit_cast<float>(static_cast<std::uint32_t>(bits)))
                     : _factory.real(std::bit_cast<double>(bits));
}

Object BinaryReader::makeUtf16(const Head& head) {
    if (!isThere(head.body, head.count, 2))
        return nullptr;
    const auto unit = [&](std::size_t i) {
        return static_cast<std::uint32_t>(number(head.body + 2 * i, 2));
    };
    _decoded.clear();
    for (std::size_t i = 0; i < head.count; ++i) {
        std::uint32_t character = unit(i);
        const bool isPair = character >= 0xD800 && character < 0xDC00 && i + 1 < head.count &&
                            unit(i + 1) >= 0xDC00 && unit(i + 1) < 0xE000;
        if (isPair)
            character = 0x10000 + ((character - 0xD800) << 10) + (unit(++i) - 0xDC00);
        appendCharacter(_decoded, character);
    }
    return _factory.string(_decoded);
}

/// Of a dictionary first all the keys, then all the values. Sets are taken for arrays.
Object BinaryReader::makeContainer(const Head& head, int depth, std::uint32_t& weight) {
    const bool isDictionary = head.kind == 0xD;
    if (!isThere(head.body, head.count, (isDictionary ? 2 : 1) * _referenceSize))
        return nullptr;
    const auto reference = [&](std::size_t i) {
        return number(head.body + i * _referenceSize, _referenceSize);
    };
    const std::size_t begin = _stack.size();
    for (std::size_t i = 0; i < head.count; ++i) {
        if (!pushMember(reference(i), isDictionary, depth, weight))
            return nullptr;
        if (isDictionary && !pushMember(reference(head.count + i), false, depth, weight))
            return nullptr;
    }
    return isDictionary ? _stack.takeDictionary(begin) : _stack.takeArray(begin);
}

bool BinaryReader::pushMember(std::uint64_t number, bool isKey, int depth, std::uint32_t& weight) {
    if (!_stack.push(readObject(number, depth + 1)))
        return false;
    const Known& member = _known[number];
    if (isKey && !member.isString)
        return failed("a key that is no text") != nullptr;
    weight += member.weight;
    return weight <= kLargestWeight || failed("a list that unfolds without end") != nullptr;
}

}  // namespace

Object readBinary(std::string_view bytes, ObjectFactory& factory, std::string& error) {
    return BinaryReader(bytes, factory).read(error);
}

}  // namespace cf::plist
