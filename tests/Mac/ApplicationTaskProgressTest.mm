// SPDX-License-Identifier: MIT
// The bar on the application's icon, pixel by pixel. Needs an X server.
#import <AppKit/AppKit.h>

#include "ula/ApplicationTaskProgress.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <ostream>

namespace {

using namespace tav::ula;

constexpr int kSide = 128;
constexpr int kFileSide = 256;

struct Colour {
    int red = 0, green = 0, blue = 0;

    bool operator==(const Colour&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Colour& colour) {
    return out << colour.red << ',' << colour.green << ',' << colour.blue;
}

constexpr Colour kPlain = {0, 0, 255};
constexpr Colour kGreen = {0, 255, 0};
constexpr Colour kYellow = {255, 255, 0};
constexpr Colour kRed = {255, 0, 0};

// Larger than icons are shown.
NSImage* plainImage() {
    NSImage* image = [[NSImage alloc] initWithSize:NSMakeSize(kFileSide, kFileSide)];
    NSBitmapImageRep* pixels =
        [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                 pixelsWide:kFileSide
                                                 pixelsHigh:kFileSide
                                              bitsPerSample:8
                                            samplesPerPixel:3
                                                   hasAlpha:NO
                                                   isPlanar:NO
                                             colorSpaceName:NSDeviceRGBColorSpace
                                                bytesPerRow:kFileSide * 3
                                               bitsPerPixel:24] autorelease];
    for (int i = 0; i < kFileSide * kFileSide * 3; ++i)
        [pixels bitmapData][i] = i % 3 == 2 ? 255 : 0;
    [image addRepresentation:pixels];
    return image;
}

// What is drawn now, with y from the lower edge.
class Picture {
public:
    explicit Picture(NSImage* image)
        : _pixels([[image representations] objectAtIndex:0]), _bytes([_pixels bitmapData]) {}

    int width() const { return static_cast<int>([_pixels pixelsWide]); }
    Colour at(int x, int y) const {
        const auto row = static_cast<NSInteger>([_pixels pixelsHigh]) - 1 - y;
        const unsigned char* pixel =
            _bytes + row * [_pixels bytesPerRow] + x * [_pixels samplesPerPixel];
        return {pixel[0], pixel[1], pixel[2]};
    }
    void save(const std::string& path) const {
        [[_pixels representationUsingType:NSPNGFileType properties:[NSDictionary dictionary]]
            writeToFile:[NSString stringWithUTF8String:path.c_str()]
             atomically:NO];
    }

private:
    NSBitmapImageRep* _pixels;
    unsigned char* _bytes;
};

// Comes before the others, which make the application's object.
TEST(TaskProgressWithoutAnApplication, DrawsNothing) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    ASSERT_EQ(NSApp, nil);
    ApplicationTaskProgress::instance()->showProgress(nullptr, 0.5, TaskProgressGreen);
    ApplicationTaskProgress::instance()->clearProgress();
    EXPECT_EQ(NSApp, nil);
    [pool release];
}

class TaskProgress : public testing::Test {
protected:
    TaskProgress() : _pool([[NSAutoreleasePool alloc] init]) {
        giveIcon();
        [NSApplication sharedApplication];
    }
    ~TaskProgress() override {
        ApplicationTaskProgress::instance()->clearProgress();
        ApplicationTaskProgress::destroyInstance();
        [_pool release];
    }

    // The one that an application has that brings none.
    static void giveIcon() {
        static const BOOL isGiven = [plainImage() setName:@"GNUstep"];
        ASSERT_TRUE(isGiven);
    }
    static void show(double fraction, int state = TaskProgressGreen) {
        ApplicationTaskProgress::instance()->showProgress(nullptr, fraction,
                                                          static_cast<TaskProgressState>(state));
    }
    static Picture picture() { return Picture([NSApp applicationIconImage]); }

    // The bar and nothing else, over the whole icon.
    static void expectBar(int width, Colour colour) {
        const Picture shown = picture();
        ASSERT_EQ(shown.width(), kSide);
        int wrong = 0;
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x) {
                const bool isBar = x >= 5 && x < 5 + width && y >= 5 && y < 20;
                if (shown.at(x, y) != (isBar ? colour : kPlain) && wrong++ == 0)
                    ADD_FAILURE() << "at " << x << ", " << y << ": " << shown.at(x, y);
            }
        EXPECT_EQ(wrong, 0);
        if (const char* folder = std::getenv("ULA_PICTURES"))
            shown.save(std::string(folder) + "/" +
                       testing::UnitTest::GetInstance()->current_test_info()->name() + ".png");
    }

    NSAutoreleasePool* _pool;
};

TEST_F(TaskProgress, NothingDrawsNoBar) {
    show(0);
    expectBar(0, kGreen);
}

TEST_F(TaskProgress, AllIsABarBetweenTheMargins) {
    show(1);
    expectBar(118, kGreen);
}

TEST_F(TaskProgress, HalfIsHalfOfIt) {
    show(0.5);
    expectBar(59, kGreen);
}

TEST_F(TaskProgress, QuarterInRed) {
    show(0.25, TaskProgressRed);
    // 29.5 points: the pixel in the middle of which it ends is none of the bar's or all its own.
    const Picture shown = picture();
    EXPECT_EQ(shown.at(5, 5), kRed);
    EXPECT_EQ(shown.at(33, 19), kRed);
    EXPECT_EQ(shown.at(35, 10), kPlain);
    EXPECT_EQ(shown.at(4, 10), kPlain);
    EXPECT_EQ(shown.at(10, 4), kPlain);
    EXPECT_EQ(shown.at(10, 20), kPlain);
}

TEST_F(TaskProgress, OneAndTwoAreYellow) {
    show(1, 1);
    expectBar(118, kYellow);
    show(1, 2);
    expectBar(118, kYellow);
}

TEST_F(TaskProgress, ThreeIsRed) {
    show(1, 3);
    expectBar(118, kRed);
}

// What that is, a drawing without a choice of colour shows.
TEST_F(TaskProgress, OtherStatesDrawInTheCurrentColour) {
    NSImage* const reference = [NSApp applicationIconImage];
    [reference lockFocus];
    NSRectFill(NSMakeRect(0, 0, 20, 20));
    NSBitmapImageRep* const drawn = [[[NSBitmapImageRep alloc]
        initWithFocusedViewRect:NSMakeRect(0, 0, kSide, kSide)] autorelease];
    [reference unlockFocus];
    const unsigned char* const pixel =
        [drawn bitmapData] + (kSide - 11) * [drawn bytesPerRow] + 10 * [drawn samplesPerPixel];
    for (int state : {7, -1, 4}) {
        show(1, state);
        expectBar(118, {pixel[0], pixel[1], pixel[2]});
    }
}

TEST_F(TaskProgress, BarsDoNotAccumulate) {
    show(0.8, TaskProgressRed);
    show(0.2);
    // 23.6 points.
    const Picture shown = picture();
    EXPECT_EQ(shown.at(20, 10), kGreen);
    EXPECT_EQ(shown.at(30, 10), kPlain);
    EXPECT_EQ(shown.at(90, 10), kPlain);
}

TEST_F(TaskProgress, MoreThanAllReachesToTheEdge) {
    show(2);
    EXPECT_EQ(picture().at(127, 10), kGreen);
    EXPECT_EQ(picture().at(127, 30), kPlain);
}

TEST_F(TaskProgress, LessThanNothingIsAnEmptyBar) {
    show(-0.5);
    EXPECT_EQ(picture().at(5, 10), kPlain);
    EXPECT_EQ(picture().at(40, 10), kPlain);
}

TEST_F(TaskProgress, ClearingGivesThePlainIcon) {
    show(1);
    ApplicationTaskProgress::instance()->clearProgress();
    expectBar(0, kGreen);
    ApplicationTaskProgress::instance()->clearProgress();
    expectBar(0, kGreen);
}

TEST_F(TaskProgress, TheBarStaysWhenTheObjectGoes) {
    show(0.5);
    ApplicationTaskProgress::destroyInstance();
    ApplicationTaskProgress::destroyInstance();
    expectBar(59, kGreen);
    EXPECT_EQ(ApplicationTaskProgress::instance(), ApplicationTaskProgress::instance());
}

TEST_F(TaskProgress, DrawingOnTheIconThatIsGivenOutDoesNotChangeIt) {
    NSImage* const icon = [NSApp applicationIconImage];
    [icon lockFocus];
    [[NSColor redColor] set];
    NSRectFill(NSMakeRect(0, 0, kSide, kSide));
    [icon unlockFocus];
    expectBar(0, kGreen);
}

TEST_F(TaskProgress, EachCallIsAnnounced) {
    struct Listener {
        NSMutableArray* told = [NSMutableArray array];
    } listener;
    id observer = [listener.told retain];
    NSNotificationCenter* const center = [NSNotificationCenter defaultCenter];
    [center addObserver:observer
               selector:@selector(addObject:)
                   name:@"ApplicationTaskProgressDidChange"
                 object:nil];
    show(0.5);
    ApplicationTaskProgress::instance()->clearProgress();
    [center removeObserver:observer];
    ASSERT_EQ([listener.told count], 2u);
    NSNotification* const first = [listener.told objectAtIndex:0];
    EXPECT_EQ([[[first userInfo] objectForKey:@"fraction"] doubleValue], 0.5);
    EXPECT_EQ([[listener.told objectAtIndex:1] userInfo], nil);
    [observer release];
}

}  // namespace
