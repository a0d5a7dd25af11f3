// SPDX-License-Identifier: MIT
#import "ula/ObjCHelper.h"

#include "ula/foundation/thread/ScratchPad.h"
#include "ula/src/Mac/FinderCollation.h"

#include <iterator>

using tav::ula::FastString;
using tav::ula::kFinderCollation;

namespace {

/// The UTF-16 characters of a text; those of a name need no memory of their own.
class Characters {
public:
    explicit Characters(NSString* text) : _length([text length]) {
        if (_length > std::size(_few))
            _many.resize(_length);
        [text getCharacters:buffer()];
    }
    Characters(const Characters&) = delete;
    Characters& operator=(const Characters&) = delete;

    const UniChar* data() const { return _many.empty() ? _few : _many.data(); }
    std::size_t length() const { return _length; }

private:
    UniChar* buffer() { return _many.empty() ? _few : _many.data(); }

    std::size_t _length;
    UniChar _few[128];
    std::vector<UniChar> _many;
};

}  // namespace

@implementation NSString (ObjCHelper)

- (std::string)toStdString {
    return [self UTF8String];
}

- (FastString)toUTF8String {
    return [self UTF8String];
}

+ (NSString*)fromStdString:(const std::string&)text {
    return [NSString stringWithUTF8String:text.c_str()];
}

+ (NSString*)fromUTF8String:(const FastString&)text {
    return [NSString stringWithUTF8String:tav::thread::globalScratchPad().zeroTerminated(text)];
}

- (NSComparisonResult)compareLikeFinder:(NSString*)other {
    const Characters left(self);
    const Characters right(other);
    SInt32 order = 0;
    UCCompareTextDefault(kFinderCollation, left.data(), left.length(), right.data(), right.length(),
                         nullptr, &order);
    if (order == 0)
        return NSOrderedSame;
    return order < 0 ? NSOrderedAscending : NSOrderedDescending;
}

@end

@implementation NSArray (ObjCHelper)

- (std::vector<std::string>)toStdStringArray {
    std::vector<std::string> texts;
    texts.reserve([self count]);
    for (NSString* text in self)
        texts.push_back([text toStdString]);
    return texts;
}

- (std::vector<FastString>)toUtf8StringArray {
    std::vector<FastString> texts;
    texts.reserve([self count]);
    for (NSString* text in self)
        texts.push_back([text toUTF8String]);
    return texts;
}

- (std::set<std::string>)toStdStringSet {
    std::set<std::string> texts;
    for (NSString* text in self)
        texts.insert([text toStdString]);
    return texts;
}

+ (NSArray*)fromStdStringArray:(const std::vector<std::string>&)texts {
    NSMutableArray* array = [NSMutableArray arrayWithCapacity:texts.size()];
    for (const std::string& text : texts)
        [array addObject:[NSString fromStdString:text]];
    return array;
}

+ (NSArray*)fromUTF8StringArray:(const std::vector<FastString>&)texts {
    NSMutableArray* array = [NSMutableArray arrayWithCapacity:texts.size()];
    for (const FastString& text : texts)
        [array addObject:[NSString fromUTF8String:text]];
    return array;
}

+ (NSArray*)fromStdStringSet:(const std::set<std::string>&)texts {
    NSMutableArray* array = [NSMutableArray arrayWithCapacity:texts.size()];
    for (const std::string& text : texts)
        [array addObject:[NSString fromStdString:text]];
    return array;
}

@end
