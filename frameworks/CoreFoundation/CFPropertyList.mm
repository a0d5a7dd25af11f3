// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"
#include "PropertyList/FoundationObjects.h"
#include "PropertyList/Readers.h"
#include "PropertyList/XmlWriter.h"

#include <CoreFoundation/CFPropertyList.h>

namespace {

using namespace cf::plist;

void report(CFErrorRef* error, NSInteger code, const std::string& reason) {
    if (error == nullptr)
        return;
    const cf::AutoreleasePool pool;
    NSString* text = [NSString stringWithUTF8String:reason.c_str()];
    // A reason may quote a part of the list that is no text.
    NSDictionary* const details =
        [NSDictionary dictionaryWithObject:text != nil ? text : @"the list is broken"
                                    forKey:NSLocalizedDescriptionKey];
    *error = reinterpret_cast<CFErrorRef>([[NSError alloc] initWithDomain:NSCocoaErrorDomain
                                                                     code:code
                                                                 userInfo:details]);
}

CFPropertyListFormat numberOf(Format format) {
    switch (format) {
    case Format::OldStyle:
        return kCFPropertyListOpenStepFormat;
    case Format::Xml:
        return kCFPropertyListXMLFormat_v1_0;
    default:
        return kCFPropertyListBinaryFormat_v1_0;
    }
}

}  // namespace

CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef* error) {
    const cf::AutoreleasePool pool;
    if (data == nullptr || options != kCFPropertyListImmutable) {
        report(error, kCFPropertyListReadCorruptError, "immutable objects of some data are made");
        return nullptr;
    }
    const std::string_view bytes(reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                                 static_cast<std::size_t>(CFDataGetLength(data)));
    FoundationObjects objects;
    std::string reason;
    Format found = Format::Xml;
    const Object list = readPropertyList(bytes, objects, found, reason);
    if (list == nullptr)
        report(error, kCFPropertyListReadCorruptError, reason);
    else if (format != nullptr)
        *format = numberOf(found);
    return list;
}

CFDataRef CFPropertyListCreateData(CFAllocatorRef, CFPropertyListRef list,
                                   CFPropertyListFormat format, CFOptionFlags options,
                                   CFErrorRef* error) {
    const cf::AutoreleasePool pool;
    XmlWriter writer;
    std::string reason = "only lists in XML are written";
    const bool isDone = format == kCFPropertyListXMLFormat_v1_0 && options == 0 &&
                        writer.write(static_cast<id>(const_cast<void*>(list)), reason);
    if (!isDone) {
        report(error, kCFPropertyListWriteStreamError, reason);
        return nullptr;
    }
    return reinterpret_cast<CFDataRef>([[NSData alloc] initWithBytes:writer.text().data()
                                                              length:writer.text().size()]);
}
