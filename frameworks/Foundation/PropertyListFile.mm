// SPDX-License-Identifier: MIT
#include "Foundation/PropertyListFile.h"

#include "CoreFoundation/WholeContent.h"

#include <CoreFoundation/CFPropertyList.h>
#include <fcntl.h>
#include <sys/stat.h>

namespace foundation {

namespace {

constexpr off_t kLargestFile = 4 << 20;

// Nil when there is nothing that could be one.
NSData* contentOf(const std::string& path) {
    // A pipe in its place is not waited for.
    const cf::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat item {};
    if (!file || fstat(file.get(), &item) != 0 || !S_ISREG(item.st_mode) ||
        item.st_size > kLargestFile)
        return nil;
    const std::string content = cf::readUpTo(file.get(), kLargestFile);
    return [NSData dataWithBytes:content.data() length:content.size()];
}

}  // namespace

NSDictionary* propertyListAt(const std::string& path) {
    NSData* const data = contentOf(path);
    if ([data length] == 0)
        return nil;
    id const list = reinterpret_cast<id>(const_cast<void*>(
        CFPropertyListCreateWithData(kCFAllocatorDefault, reinterpret_cast<CFDataRef>(data),
                                     kCFPropertyListImmutable, nullptr, nullptr)));
    [list autorelease];
    return [list isKindOfClass:[NSDictionary class]] ? list : nil;
}

}  // namespace foundation
