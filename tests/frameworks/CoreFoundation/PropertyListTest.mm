// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>
#include <string>

namespace {

class PropertyList : public testing::Test {
protected:
    PropertyList() : _pool([[NSAutoreleasePool alloc] init]) {}
    ~PropertyList() override { [_pool release]; }

    /// Nil, and the reason in `reason`, for what is no list.
    id read(const std::string& bytes) {
        const CFDataRef data =
            CFDataCreate(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(bytes.data()),
                         static_cast<CFIndex>(bytes.size()));
        CFErrorRef error = nullptr;
        format = 0;
        id list = static_cast<id>(const_cast<void*>(CFPropertyListCreateWithData(
            kCFAllocatorDefault, data, kCFPropertyListImmutable, &format, &error)));
        CFRelease(data);
        EXPECT_EQ(list == nil, error != nullptr);
        takeReason(error, kCFPropertyListReadCorruptError);
        return [list autorelease];
    }
    /// "(failed)", and the reason in `reason`.
    std::string write(id list) {
        CFErrorRef error = nullptr;
        const CFDataRef data = CFPropertyListCreateData(kCFAllocatorDefault, list,
                                                        kCFPropertyListXMLFormat_v1_0, 0, &error);
        EXPECT_EQ(data == nullptr, error != nullptr);
        takeReason(error, kCFPropertyListWriteStreamError);
        if (data == nullptr)
            return "(failed)";
        std::string text(reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                         static_cast<std::size_t>(CFDataGetLength(data)));
        CFRelease(data);
        return text;
    }
    /// What stands between the element "plist" and its end.
    std::string written(id list) {
        const std::string text = write(list);
        const std::string begin = "<plist version=\"1.0\">\n";
        const std::size_t place = text.find(begin);
        if (place == text.npos)
            return text;
        return text.substr(place + begin.size(),
                           text.size() - place - begin.size() - sizeof "</plist>");
    }

    CFPropertyListFormat format = 0;
    std::string reason;

private:
    void takeReason(CFErrorRef error, CFIndex code) {
        reason.clear();
        if (error == nullptr)
            return;
        EXPECT_EQ(CFErrorGetCode(error), code);
        const CFStringRef text = CFErrorCopyDescription(error);
        reason = [reinterpret_cast<NSString*>(const_cast<__CFString*>(text)) UTF8String];
        CFRelease(text);
        CFRelease(error);
    }

    NSAutoreleasePool* _pool;
};

TEST_F(PropertyList, ObjectsAreFoundations) {
    NSDictionary* const list =
        read("<plist><dict><key>i</key><integer>-5</integer><key>u</key><integer>0xFFFFFFFFFFFFFFFF"
             "</integer><key>t</key><true/><key>r</key><real>2.5</real><key>s</key><string>\xC3\xA9"
             "</string><key>a</key><array><string>x</string></array><key>d</key><data>YW\nJj</data>"
             "<key>w</key><date>2001-01-02T00:00:01Z</date></dict></plist>");
    EXPECT_EQ(format, kCFPropertyListXMLFormat_v1_0);
    EXPECT_EQ([[list objectForKey:@"i"] longLongValue], -5);
    EXPECT_EQ([[list objectForKey:@"u"] unsignedLongLongValue], ~0ULL);
    EXPECT_EQ([list objectForKey:@"t"], [NSNumber numberWithBool:YES]);
    EXPECT_STREQ([[list objectForKey:@"r"] objCType], "d");
    EXPECT_EQ([[list objectForKey:@"s"] characterAtIndex:0], 0xE9);
    EXPECT_TRUE([[list objectForKey:@"a"] isEqual:[NSArray arrayWithObject:@"x"]]);
    EXPECT_TRUE([[list objectForKey:@"d"] isEqual:[NSData dataWithBytes:"abc" length:3]]);
    EXPECT_EQ([[list objectForKey:@"w"] timeIntervalSinceReferenceDate], 86401);
}

TEST_F(PropertyList, TheFormatIsToldByTheBytes) {
    EXPECT_NE(read("{ a = b; }"), nil);
    EXPECT_EQ(format, kCFPropertyListOpenStepFormat);
    EXPECT_NE(read(std::string("bplist00\x09\x08\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x01"
                               "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x09",
                               42)),
              nil);
    EXPECT_EQ(format, kCFPropertyListBinaryFormat_v1_0);
    EXPECT_EQ(read("{ a = "), nil);
    EXPECT_EQ(format, 0);
    EXPECT_EQ(reason, "line 1: the text ends too early");
}

TEST_F(PropertyList, OldStyleTextsAreData) {
    NSDictionary* const list =
        read("\"quoted\" = 'single'; word./-$:_ = \"\\101\\U00e9\\\"\\n\"; alone; d = <0aFf 00>;"
             "dict = {a=(b,{c=d}); };");
    EXPECT_TRUE([[list objectForKey:@"quoted"] isEqual:@"single"]);
    EXPECT_TRUE([[list objectForKey:@"word./-$:_"]
        isEqual:[NSString stringWithUTF8String:"A\xC3\xA9\"\n"]]);
    EXPECT_TRUE([[list objectForKey:@"alone"] isEqual:@"alone"]);
    EXPECT_TRUE([[list objectForKey:@"d"] isEqual:[NSData dataWithBytes:"\x0A\xFF" length:3]]);
    EXPECT_EQ([[[list objectForKey:@"dict"] objectForKey:@"a"] count], 2U);
    EXPECT_EQ([[read("{ w = <*D2001-01-01 01:00:00 +0100>; }") objectForKey:@"w"]
                  timeIntervalSinceReferenceDate],
              0);
}

TEST_F(PropertyList, AMistakeIsToldWithItsLine) {
    EXPECT_EQ(read("<plist>\n<dict>\n<key>a</key>\n<integer>x</integer></dict></plist>"), nil);
    EXPECT_EQ(reason, "line 4: no value for \"integer\"");
    EXPECT_EQ(read("<plist><dict>\xFF</dict></plist>"), nil);
    EXPECT_EQ(reason, "the text holds bytes that are no characters");
    EXPECT_EQ(read("<?xml version=\"1.0\" encoding=\"x-\xFF\"?><dict/>"), nil);
    EXPECT_EQ(reason, "the list is broken");
}

TEST_F(PropertyList, EveryKindOfObjectIsWritten) {
    EXPECT_EQ(written([NSNumber numberWithBool:YES]), "<true/>\n");
    EXPECT_EQ(written([NSNumber numberWithBool:NO]), "<false/>\n");
    EXPECT_EQ(written([NSNumber numberWithInt:1]), "<integer>1</integer>\n");
    EXPECT_EQ(written([NSNumber numberWithUnsignedLongLong:~0ULL]),
              "<integer>18446744073709551615</integer>\n");
    EXPECT_EQ(written([NSNumber numberWithDouble:0.1]), "<real>0.1</real>\n");
    EXPECT_EQ(written([NSNumber numberWithDouble:-1.0 / 0.0]), "<real>-infinity</real>\n");
    EXPECT_EQ(written([NSData dataWithBytes:"abcd" length:4]), "<data>YWJjZA==</data>\n");
    EXPECT_EQ(written([NSData data]), "<data></data>\n");
    EXPECT_EQ(written([NSDate dateWithTimeIntervalSinceReferenceDate:1]),
              "<date>2001-01-01T00:00:01Z</date>\n");
    EXPECT_EQ(written([NSString stringWithUTF8String:"<\xC3\xA9&>\r"]),
              "<string>&lt;\xC3\xA9&amp;&gt;&#13;</string>\n");
    EXPECT_EQ(written([NSArray array]), "<array/>\n");
    EXPECT_EQ(written([NSDictionary dictionaryWithObjectsAndKeys:[NSDictionary dictionary], @"b",
                                                                 [NSArray arrayWithObject:@"x"],
                                                                 @"a", nil]),
              "<dict>\n\t<key>a</key>\n\t<array>\n\t\t<string>x</string>\n\t</array>\n"
              "\t<key>b</key>\n\t<dict/>\n</dict>\n");
}

TEST_F(PropertyList, WhatIsWrittenReadsBackHereAndWithGNUstep) {
    NSDictionary* const list = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:-7], @"i",
                                     [NSNumber numberWithDouble:1e-300], @"r", @"a & b", @"s",
                                     [NSNumber numberWithBool:YES], @"t",
                                     [NSDate dateWithTimeIntervalSinceReferenceDate:86400], @"w",
                                     [NSData dataWithBytes:"\0\1\2" length:3], @"d", nil];
    const std::string text = write(list);
    EXPECT_TRUE([read(text) isEqual:list]);
    NSData* const data = [NSData dataWithBytes:text.data() length:text.size()];
    EXPECT_TRUE([[NSPropertyListSerialization propertyListWithData:data
                                                           options:NSPropertyListImmutable
                                                            format:nullptr
                                                             error:nullptr] isEqual:list]);
}

TEST_F(PropertyList, WhatXmlCannotCarryIsNotWritten) {
    const unichar odd[] = {'a', 1};
    NSString* const control = [NSString stringWithCharacters:odd length:2];
    EXPECT_EQ(write([NSDictionary dictionaryWithObject:[NSDictionary dictionaryWithObject:control
                                                                                   forKey:@"K"]
                                                forKey:@"G"]),
              "(failed)");
    EXPECT_EQ(reason, "\"G\": \"K\": a text with a character that XML does not have");
    const unichar noncharacter = 0xFFFF;
    EXPECT_EQ(write([NSString stringWithCharacters:&noncharacter length:1]), "(failed)");
    const unichar half = 0xD800;
    EXPECT_EQ(write([NSString stringWithCharacters:&half length:1]), "(failed)");
    const unichar zero[] = {'a', 0, 'b'};
    EXPECT_EQ(write([NSString stringWithCharacters:zero length:3]), "(failed)");
    EXPECT_EQ(write([[[NSObject alloc] init] autorelease]), "(failed)");
    EXPECT_EQ(write([NSDictionary dictionaryWithObject:@"x" forKey:[NSNumber numberWithInt:1]]),
              "(failed)");
}

TEST_F(PropertyList, OtherOptionsAndFormatsFail) {
    const CFDataRef data = CFDataCreate(kCFAllocatorDefault, nullptr, 0);
    EXPECT_EQ(CFPropertyListCreateWithData(kCFAllocatorDefault, data, 2, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(CFPropertyListCreateWithData(kCFAllocatorDefault, nullptr, 0, nullptr, nullptr),
              nullptr);
    CFRelease(data);
    EXPECT_EQ(CFPropertyListCreateData(kCFAllocatorDefault, @"x", kCFPropertyListBinaryFormat_v1_0,
                                       0, nullptr),
              nullptr);
}

}  // namespace
