// SPDX-License-Identifier: MIT
#include <CoreServices/TextSortKeys.h>

#include "CoreFoundation/Guarded.h"
#include "CoreServices/FastSortKey.h"
#include "CoreServices/KeyArena.h"
#include "CoreServices/KeySort.h"

#include <climits>
#include <cstring>
#include <new>

namespace {

using namespace coreservices;

// The joining count as one more level: the byte that ends a level, then five bytes of seven bits
// with the top bit set, none zero.
constexpr size_t kCountBytes = 6;

size_t appendCount(uint32_t count, uint8_t* at) {
    at[0] = 1;
    for (size_t i = 1; i < kCountBytes; ++i)
        at[i] = static_cast<uint8_t>(0x80 | ((count >> 7 * (kCountBytes - 1 - i)) & 0x7F));
    at[kCountBytes] = 0;
    return kCountBytes + 1;
}

// Makes keys into an arena, with the table where it covers the text and with ICU where not.
class KeyMaker {
public:
    explicit KeyMaker(UCCollateOptions options)
        : _options(options), _collator(threadCollator(options)) {
        if (options == kFinderOptions)
            _table = CollationTable::ofProcess();
    }

    bool usable() const { return _collator != nullptr; }

    // Leaves the key in the arena's reserve and returns its length.
    size_t make(TextView text) {
        size_t length = 0;
        if (_table != nullptr)
            length = fastSortKey(*_table, text, _arena.reserve(fastSortKeyRoom(text.size())));
        return length != 0 ? length : makeWithCollator(text);
    }

    KeyArena& arena() { return _arena; }

private:
    size_t makeWithCollator(TextView text) {
        PreparedText prepared(_options, text);
        size_t length = keyOf(prepared.text());
        if ((_options & kUCCollateComposeInsensitiveMask) != 0)
            return length;
        uint8_t* end = _arena.reserve(0) + length - 1;
        return length - 1 + appendCount(prepared.joiningCount(), end);
    }

    size_t keyOf(TextView text) {
        size_t room = text.size() * 4 + 64;
        for (;;) {
            uint8_t* key = _arena.reserve(room + kCountBytes);
            int32_t length =
                ucol_getSortKey(_collator, text.data(), static_cast<int32_t>(text.size()), key,
                                static_cast<int32_t>(room));
            if (static_cast<size_t>(length) <= room)
                return static_cast<size_t>(length);
            room = static_cast<size_t>(length);
        }
    }

    UCCollateOptions _options;
    UCollator* _collator;
    const CollationTable* _table = nullptr;
    KeyArena _arena;
};

bool isSortable(const UniChar* text, UniCharCount length) {
    return (text != nullptr || length == 0) && length <= INT_MAX / 64;
}

OSStatus makeKey(KeyMaker& maker, TextView text, UInt8* key, ByteCount capacity,
                 ByteCount* actual) {
    size_t length = maker.make(text);
    if (actual != nullptr)
        *actual = length;
    if (length > capacity)
        return kCollateBufferTooSmall;
    std::memcpy(key, maker.arena().reserve(0), length);
    return noErr;
}

OSStatus orderItems(KeyMaker& maker, const TextSortItem* items, ItemCount count, UInt32* order) {
    std::vector<SortedKey> keys(count);
    for (ItemCount i = 0; i < count; ++i) {
        if (!isSortable(items[i].text, items[i].length))
            return paramErr;
        size_t length = maker.make(viewOf(items[i].text, items[i].length));
        keys[i] = {0, maker.arena().keep(length), static_cast<uint32_t>(i)};
    }
    sortKeys(keys);
    for (ItemCount i = 0; i < count; ++i)
        order[i] = keys[i].item;
    return noErr;
}

// Runs one of the two above with a maker; neither an exception nor a missing collator gets out.
template <typename Function>
OSStatus withMaker(UCCollateOptions options, Function function) {
    if (!optionsAreKnown(options))
        return kCollateInvalidOptions;
    return cf::guarded<OSStatus>(paramErr, paramErr, [&] {
        KeyMaker maker(options);
        return maker.usable() ? function(maker) : OSStatus{kCollateMissingUnicodeTableErr};
    });
}

}  // namespace

OSStatus TextSortKeyMake(UCCollateOptions options, const UniChar* text, UniCharCount length,
                         UInt8* key, ByteCount capacity, ByteCount* actual) {
    if (!isSortable(text, length) || (key == nullptr && capacity != 0))
        return paramErr;
    return withMaker(options, [&](KeyMaker& maker) {
        return makeKey(maker, viewOf(text, length), key, capacity, actual);
    });
}

OSStatus TextSortKeysOrder(UCCollateOptions options, const TextSortItem* items, ItemCount count,
                           UInt32* order) {
    if ((items == nullptr || order == nullptr) && count != 0)
        return paramErr;
    if (count > UINT32_MAX)
        return paramErr;
    return withMaker(options,
                     [&](KeyMaker& maker) { return orderItems(maker, items, count, order); });
}
