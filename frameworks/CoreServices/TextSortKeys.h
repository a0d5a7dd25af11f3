// SPDX-License-Identifier: MIT
// Sort keys for UCCompareTextDefault: two keys made with the same options compare as bytes exactly
// as their texts compare. The platform has no such call without a collator object; these are ours,
// for lists that are sorted whole.
#pragma once

#include <CoreServices/UnicodeUtilities.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct TextSortItem {
    const UniChar* text;
    UniCharCount length;
} TextSortItem;

// Writes the key of one text, its closing zero byte included (no other byte of a key is zero).
// `actual` receives the key's length, also when `capacity` was too small.
// Thread: any.
// Fails: as UCCompareTextDefault, and kCollateBufferTooSmall; then the content of `key` is
// unspecified.
__attribute__((visibility("default"))) OSStatus
TextSortKeyMake(UCCollateOptions options, const UniChar* text, UniCharCount length, UInt8* key,
                ByteCount capacity, ByteCount* actual);

// Fills `order` with the `count` positions of `items` in ascending order; items that compare equal
// keep the order they came in.
// Thread: any. Takes about 100 bytes an item while it runs.
// Fails: as UCCompareTextDefault, and paramErr for more than 2^32 - 1 items or when memory runs
// out; then the content of `order` is unspecified.
__attribute__((visibility("default"))) OSStatus TextSortKeysOrder(UCCollateOptions options,
                                                                  const TextSortItem* items,
                                                                  ItemCount count, UInt32* order);

#ifdef __cplusplus
}
#endif
