// SPDX-License-Identifier: MIT
// Text. A CFStringRef is an NSString*.
#pragma once

#include <CoreFoundation/CFBase.h>

CF_EXTERN_C_BEGIN

typedef UInt32 CFStringEncoding;
enum {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingUTF8 = 0x08000100,
};

typedef CFOptionFlags CFStringCompareFlags;
enum { kCFCompareCaseInsensitive = 1, kCFCompareNumerically = 64 };

/// Fails: null for a null text, bytes that are not valid in the encoding, an unknown encoding.
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                CFStringEncoding encoding);
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes,
                                              CFIndex count, CFStringEncoding encoding,
                                              Boolean isExternalRepresentation);
CF_EXPORT CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string);

/// Units: UTF-16 code units.
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);
CF_EXPORT UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
/// Fails: false when the text with its final zero does not fit or has no form in the encoding.
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                                     CFStringEncoding encoding);
CF_EXPORT CFComparisonResult CFStringCompare(CFStringRef string, CFStringRef other,
                                             CFStringCompareFlags flags);
CF_EXPORT Boolean CFStringHasPrefix(CFStringRef string, CFStringRef prefix);
CF_EXPORT Boolean CFStringHasSuffix(CFStringRef string, CFStringRef suffix);

/// For CFSTR only. Owner: the process; one object per text, for ever.
CF_EXPORT CFStringRef __CFStringMakeConstantString(const char* text);

#ifdef __OBJC__
#define CFSTR(text) ((CFStringRef) @text)
#else
#define CFSTR(text) __CFStringMakeConstantString("" text "")
#endif

CF_EXTERN_C_END
