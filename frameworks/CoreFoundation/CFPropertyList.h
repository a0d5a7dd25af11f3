// SPDX-License-Identifier: MIT
// Property lists: dictionaries, arrays, texts, numbers, truth values, dates and data, and the files
// that they are kept in. Their objects are Foundation's.
#pragma once

#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFError.h>

CF_EXTERN_C_BEGIN

typedef CFTypeRef CFPropertyListRef;

typedef CFIndex CFPropertyListFormat;
enum {
    kCFPropertyListOpenStepFormat = 1,
    kCFPropertyListXMLFormat_v1_0 = 100,
    kCFPropertyListBinaryFormat_v1_0 = 200,
};

enum { kCFPropertyListImmutable = 0 };

enum {
    kCFPropertyListReadCorruptError = 3840,
    kCFPropertyListWriteStreamError = 3851,
};

/// Reads a list of any of the formats, told by its bytes, and stores which one it was in `format`
/// unless that is null. Integers are numbers of 64 bits, reals doubles; of binary lists the short
/// reals are floats.
/// Takes any bytes: a broken list fails. So do one with more than 512 levels, one with a number
/// of more than 64 bits, and a binary one that unfolds to more than a text of 256 MiB.
/// Fails: null; the reason in `error` unless that is null, and the caller's to release. Options
/// other than kCFPropertyListImmutable fail as well.
CF_EXPORT CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                                         CFOptionFlags options,
                                                         CFPropertyListFormat* format,
                                                         CFErrorRef* error);

/// Writes a list in XML, in UTF-8, the keys of dictionaries in the order of their bytes.
/// Fails: as above, for other formats too; for objects that have no place in a list, and texts with
/// characters that XML does not have.
CF_EXPORT CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator, CFPropertyListRef list,
                                             CFPropertyListFormat format, CFOptionFlags options,
                                             CFErrorRef* error);

CF_EXTERN_C_END
