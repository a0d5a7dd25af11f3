// SPDX-License-Identifier: MIT
#include "ula/BaseTypesConverter.h"
#include "ula/ObjCFunctionsWrapper.h"
#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

#include <gmock/gmock.h>

namespace tav::ula {

using testing::ElementsAre;
using Texts = std::vector<std::string>;

class Bridging : public testing::Test {
    const ScopedARPool _pool;
};

TEST_F(Bridging, TextsKeepTheirBytesBothWays) {
    const std::string text = "Gr\u00fc\u00dfe \u2603 \U0001f600";
    EXPECT_EQ([[NSString fromStdString:text] toStdString], text);
    EXPECT_EQ([[NSString fromUTF8String:FastString(text)] toUTF8String], FastString(text));
    EXPECT_EQ([[NSString fromStdString:text] length], 10u);
}

TEST_F(Bridging, EmptyTextsStayEmpty) {
    EXPECT_EQ([[NSString fromStdString:""] toStdString], "");
    EXPECT_TRUE([[NSString fromUTF8String:FastString()] toUTF8String].empty());
}

TEST_F(Bridging, PartOfALongerBufferGivesExactlyThatPart) {
    const FastString whole("Window.Width");
    EXPECT_EQ([[NSString fromUTF8String:whole.substr(0, 6)] toStdString], "Window");
    EXPECT_EQ([[NSString fromUTF8String:whole.substr(7)] toStdString], "Width");
    const char bytes[] = {'a', 'b', 'c', 'd'};
    EXPECT_EQ([[NSString fromUTF8String:FastString::borrow(bytes, 2)] toStdString], "ab");
}

TEST_F(Bridging, StdStringEndsAtItsFirstZeroByte) {
    EXPECT_EQ([[NSString fromStdString:std::string("ab\0cd", 5)] toStdString], "ab");
}

TEST_F(Bridging, ArraysKeepTheirOrder) {
    const Texts texts{"pear", "apple", "pear"};
    NSArray* const array = [NSArray fromStdStringArray:texts];
    EXPECT_TRUE([array isKindOfClass:[NSMutableArray class]]);
    EXPECT_EQ([array toStdStringArray], texts);
    EXPECT_THAT([array toUtf8StringArray],
                ElementsAre(FastString("pear"), FastString("apple"), FastString("pear")));
}

TEST_F(Bridging, ArraysOfFastStringsKeepTheirOrder) {
    const FastString whole("onetwo");
    NSArray* const array =
        [NSArray fromUTF8StringArray:{whole.substr(3), whole.substr(0, 3), FastString()}];
    EXPECT_THAT([array toStdStringArray], ElementsAre("two", "one", ""));
}

TEST_F(Bridging, SetsCollapseDuplicatesAndAscend) {
    NSArray* const array = [NSArray fromStdStringArray:{"pear", "apple", "pear"}];
    EXPECT_THAT([array toStdStringSet], ElementsAre("apple", "pear"));
    NSArray* const sorted = [NSArray fromStdStringSet:{"pear", "apple", "Zoo"}];
    EXPECT_THAT([sorted toStdStringArray], ElementsAre("Zoo", "apple", "pear"));
}

TEST_F(Bridging, EmptyArraysStayEmpty) {
    EXPECT_EQ([[NSArray fromStdStringArray:{}] count], 0u);
    EXPECT_TRUE([[NSArray array] toStdStringArray].empty());
    EXPECT_TRUE([[NSArray array] toUtf8StringArray].empty());
    EXPECT_TRUE([[NSArray array] toStdStringSet].empty());
}

TEST_F(Bridging, WrapperGivesARetainedStringObject) {
    void* object = nullptr;
    {
        const ScopedARPool inner;
        object = ObjCFunctionsWrapper::stdStringToNSString("caf\u00e9:au lait");
    }
    NSString* const text = static_cast<NSString*>(object);
    EXPECT_EQ([text toStdString], "caf\u00e9:au lait");
    EXPECT_EQ([text retainCount], 1u);
    ObjCFunctionsWrapper::releaseNSObject(object);
}

TEST_F(Bridging, DisplayStringShowsSlashesForColons) {
    void* object = nullptr;
    {
        const ScopedARPool inner;
        object = ObjCFunctionsWrapper::stdPathStringToNSDisplayString("a:b/c");
    }
    EXPECT_EQ([static_cast<NSString*>(object) toStdString], "a/b/c");
    ObjCFunctionsWrapper::releaseNSObject(object);
}

TEST_F(Bridging, PoolReleasesWhatWasAutoreleasedInBetween) {
    NSObject* const object = [[NSObject alloc] init];
    {
        const ScopedARPool inner;
        [[object retain] autorelease];
        EXPECT_EQ([object retainCount], 2u);
    }
    EXPECT_EQ([object retainCount], 1u);
    [object release];
}

TEST_F(Bridging, RectanglesBecomeEdgesWithoutBeingFlipped) {
    EXPECT_EQ(BaseTypesConverter::toTavRect(CGRectMake(10, 20, 30, 40)),
              (math::GenRect<float>{10, 20, 40, 60}));
}

TEST_F(Bridging, RectangleEdgesAreSummedInFloat) {
    // 2^24 + 1 is no float: the sum of floats stays at 2^24, that of doubles would not.
    const auto edges = BaseTypesConverter::toTavRect(CGRectMake(16777216, 0.1, 1, 0.2));
    EXPECT_EQ(edges.right, 16777216.0f);
    EXPECT_EQ(edges.bottom, 0.1f + 0.2f);
}

TEST_F(Bridging, FloatEdgesBecomeOriginAndSize) {
    const CGRect rectangle =
        BaseTypesConverter::fromTavRectf(math::GenRect<float>{0.1f, 0.2f, 0.4f, 0.9f});
    EXPECT_EQ(rectangle.origin.x, 0.1f);
    EXPECT_EQ(rectangle.origin.y, 0.2f);
    EXPECT_EQ(rectangle.size.width, 0.4f - 0.1f);
    EXPECT_EQ(rectangle.size.height, 0.9f - 0.2f);
}

TEST_F(Bridging, IntegerEdgesBecomeOriginAndSize) {
    const CGRect rectangle = BaseTypesConverter::fromTavRecti(math::GenRect<int>{10, 20, 30, 60});
    EXPECT_EQ(rectangle.origin.x, 10);
    EXPECT_EQ(rectangle.origin.y, 20);
    EXPECT_EQ(rectangle.size.width, 20);
    EXPECT_EQ(rectangle.size.height, 40);
}

}  // namespace tav::ula
