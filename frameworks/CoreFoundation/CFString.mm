// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"
#include "ConstantStrings.h"

#include <CoreFoundation/CFString.h>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

namespace {

constexpr auto unknownEncoding = static_cast<NSStringEncoding>(0);

NSString* text(CFStringRef string) {
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(string));
}

CFStringRef reference(NSString* string) {
    return reinterpret_cast<CFStringRef>(string);
}

NSStringEncoding encodingOf(CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return NSUTF8StringEncoding;
    case kCFStringEncodingASCII:
        return NSASCIIStringEncoding;
    case kCFStringEncodingISOLatin1:
        return NSISOLatin1StringEncoding;
    case kCFStringEncodingMacRoman:
        return NSMacOSRomanStringEncoding;
    case kCFStringEncodingUTF16:
        return NSUnicodeStringEncoding;
    default:
        return unknownEncoding;
    }
}

}  // namespace

CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* characters,
                                      CFStringEncoding encoding) {
    if (characters == nullptr)
        return nullptr;
    return CFStringCreateWithBytes(allocator, reinterpret_cast<const UInt8*>(characters),
                                   static_cast<CFIndex>(strlen(characters)), encoding, false);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean) {
    NSStringEncoding known = encodingOf(encoding);
    if (known == unknownEncoding || count < 0)
        return nullptr;
    cf::AutoreleasePool pool;
    return reference([[NSString alloc] initWithBytes:bytes
                                              length:static_cast<NSUInteger>(count)
                                            encoding:known]);
}

CFStringRef CFStringCreateCopy(CFAllocatorRef, CFStringRef string) {
    return reference([text(string) copy]);
}

CFIndex CFStringGetLength(CFStringRef string) {
    return static_cast<CFIndex>([text(string) length]);
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
    return [text(string) characterAtIndex:static_cast<NSUInteger>(index)];
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return length * 3;
    case kCFStringEncodingUTF16:
        return length * static_cast<CFIndex>(sizeof(UniChar));
    default:
        return encodingOf(encoding) == unknownEncoding ? static_cast<CFIndex>(kCFNotFound) : length;
    }
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize,
                           CFStringEncoding encoding) {
    NSStringEncoding known = encodingOf(encoding);
    if (known == unknownEncoding || bufferSize <= 0)
        return false;
    cf::AutoreleasePool pool;
    // Not getCString:maxLength:encoding:, which cuts a text that is too long and says yes.
    NSData* bytes = [text(string) dataUsingEncoding:known allowLossyConversion:NO];
    if (bytes == nil || [bytes length] + 1 > static_cast<NSUInteger>(bufferSize))
        return false;
    memcpy(buffer, [bytes bytes], [bytes length]);
    buffer[[bytes length]] = 0;
    return true;
}

CFComparisonResult CFStringCompare(CFStringRef string, CFStringRef other,
                                   CFStringCompareFlags flags) {
    cf::AutoreleasePool pool;
    NSStringCompareOptions options = 0;
    if ((flags & kCFCompareCaseInsensitive) != 0)
        options |= NSCaseInsensitiveSearch;
    if ((flags & kCFCompareNumerically) != 0)
        options |= NSNumericSearch;
    return [text(string) compare:text(other) options:options];
}

Boolean CFStringHasPrefix(CFStringRef string, CFStringRef prefix) {
    // GNUstep answers no for an empty prefix, the platform yes.
    return CFStringGetLength(prefix) == 0 || [text(string) hasPrefix:text(prefix)];
}

Boolean CFStringHasSuffix(CFStringRef string, CFStringRef suffix) {
    return CFStringGetLength(suffix) == 0 || [text(string) hasSuffix:text(suffix)];
}

std::mutex& cf::constantStringsLock() {
    static auto* const lock = new std::mutex;
    return *lock;
}

CFStringRef __CFStringMakeConstantString(const char* characters) {
    // Never destroyed: constants are used by the destructors of static objects too.
    static auto* const strings = new std::map<std::string, CFStringRef, std::less<>>;
    std::lock_guard guard(cf::constantStringsLock());
    auto found = strings->find(characters);
    if (found == strings->end())
        found = strings
                    ->emplace(characters,
                              CFStringCreateWithCString(nullptr, characters, kCFStringEncodingUTF8))
                    .first;
    return found->second;
}
