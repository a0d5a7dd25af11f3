// SPDX-License-Identifier: MIT
#include "ula/src/Mac/PropertyListFile.h"

#include "ula/foundation/xml/XmlDocumentRapid.h"
#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/CFOwner.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace tav::ula {

namespace {

constexpr off_t kLargestFile = xml::XmlDocumentRapid::kLargestText;

/// Empty when the file may be read.
std::string reasonNotToRead(const std::string& path) {
    struct stat item {};
    if (stat(path.c_str(), &item) != 0)
        return errno == ENOENT ? "there is no such file" : std::strerror(errno);
    if (!S_ISREG(item.st_mode))
        return S_ISDIR(item.st_mode) ? "is a folder" : "is not a regular file";
    return item.st_size > kLargestFile ? "larger than 256 MiB, the most that is read" : "";
}

NSString* pathOf(const std::string& path) {
    return [NSString fromStdString:path];
}

NSData* readBytes(const std::string& path, std::string& error) {
    error = reasonNotToRead(path);
    if (!error.empty())
        return nil;
    NSString* const text = pathOf(path);
    NSData* const bytes = text == nil ? nil : [NSData dataWithContentsOfFile:text];
    if (bytes == nil)
        error = "cannot be read";
    return bytes;
}

std::string describe(const CFOwner<CFErrorRef>& error) {
    if (!error)
        return "no reason is given";
    const CFOwner<CFStringRef> description(CFErrorCopyDescription(error.get()));
    return textOf(bridged(description.get()));
}

NSDictionary* dictionaryOf(NSData* bytes, std::string& error) {
    CFOwner<CFErrorRef> reason;
    const CFPropertyListRef list = CFPropertyListCreateWithData(
        kCFAllocatorDefault, bridged(bytes), kCFPropertyListImmutable, nullptr, reason.receive());
    if (list == nullptr) {
        error = "no property list: " + describe(reason);
        return nil;
    }
    id root = [static_cast<id>(const_cast<void*>(list)) autorelease];
    if ([root isKindOfClass:[NSDictionary class]])
        return root;
    error = "a property list, but not of a dictionary";
    return nil;
}

}  // namespace

NSDictionary* loadPropertyList(const std::string& path, std::string& error) {
    NSData* const bytes = readBytes(path, error);
    NSDictionary* const root = bytes == nil ? nil : dictionaryOf(bytes, error);
    if (root == nil)
        error = path + ": " + error;
    return root;
}

bool holdsGroups(NSDictionary* root) {
    for (id name in root)
        if (![[root objectForKey:name] isKindOfClass:[NSDictionary class]])
            return false;
    return [root count] != 0;
}

}  // namespace tav::ula
