// SPDX-License-Identifier: MIT
#include "Foundation/PropertyListFile.h"

#include <CoreFoundation/CFPropertyList.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace foundation {

namespace {

constexpr off_t kLargestFile = 4 << 20;

// Nil when there is nothing that could be one.
NSData* contentOf(const std::string& path) {
    // A pipe in its place is not waited for.
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return nil;
    struct stat item {};
    NSMutableData* data = nil;
    if (fstat(file, &item) == 0 && S_ISREG(item.st_mode) && item.st_size <= kLargestFile) {
        data = [NSMutableData dataWithLength:static_cast<NSUInteger>(item.st_size)];
        const ssize_t size = read(file, [data mutableBytes], [data length]);
        [data setLength:size > 0 ? static_cast<NSUInteger>(size) : 0];
    }
    close(file);
    return data;
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
