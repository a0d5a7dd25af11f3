// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

namespace {

std::string text(NSString* string) {
    return [string UTF8String];
}

TEST(PathHandling, OnlySlashesSeparate) {
    // Asks for the library that sets it.
    CFRelease(CFRetain(CFSTR("x")));
    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    EXPECT_EQ(text([@"/a/b\\c" lastPathComponent]), "b\\c");
    EXPECT_EQ(text([@"/a/b\\c" stringByDeletingLastPathComponent]), "/a");
    EXPECT_EQ(text([[NSFileManager defaultManager] displayNameAtPath:@"/a/b\\040"]), "b\\040");
    EXPECT_TRUE([@"/c:" isAbsolutePath]);
    EXPECT_EQ(text([@"c:" stringByAppendingPathComponent:@"x"]), "c:/x");
    [pool release];
}

}  // namespace
