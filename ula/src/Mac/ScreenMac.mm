// SPDX-License-Identifier: MIT
#include "ula/Screen.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"
#include "ula/foundation/debug/Assertion.h"
#include "ula/src/Mac/ScreenNumber.h"

#import <AppKit/AppKit.h>
#import <AppKit/NSScreen+Names.h>
#include <ApplicationServices/ApplicationServices.h>

namespace tav::ula {

namespace {

using Rectangle = math::GenRect<int>;

void retainScreen(void* handle) {
    [static_cast<NSScreen*>(handle) retain];
}

void releaseScreen(void* handle) {
    [static_cast<NSScreen*>(handle) release];
}

ScreenRetainer platformRetainer{retainScreen, releaseScreen};

/// Each part is truncated for itself. y is negated and not offset, on purpose.
Rectangle toLibrary(NSRect rectangle) {
    const int left = static_cast<int>(rectangle.origin.x);
    const int top = static_cast<int>(-(rectangle.origin.y + rectangle.size.height));
    return {left, top, left + static_cast<int>(rectangle.size.width),
            top + static_cast<int>(rectangle.size.height)};
}

NSRect toPlatform(const Rectangle& rectangle) {
    return NSMakeRect(rectangle.left, -static_cast<CGFloat>(rectangle.bottom),
                      static_cast<CGFloat>(rectangle.right) - rectangle.left,
                      static_cast<CGFloat>(rectangle.bottom) - rectangle.top);
}

/// Unlike NSPointInRect all four edges belong to it.
bool has(NSRect frame, const Point& point) {
    const CGFloat y = -static_cast<CGFloat>(point.y);
    return frame.origin.x <= point.x && point.x <= frame.origin.x + frame.size.width &&
           frame.origin.y <= y && y <= frame.origin.y + frame.size.height;
}

Screen screenAt(NSArray* screens, NSUInteger index) {
    NSScreen* const screen = [screens objectAtIndex:index];
    return Screen(toLibrary([screen frame]), toLibrary([screen visibleFrame]),
                  static_cast<int>(NSBitsPerPixelFromDepth([screen depth])), index == 0, screen,
                  static_cast<int>(index), &platformRetainer);
}

/// NSNotFound when no screen has the point.
NSUInteger indexAt(NSArray* screens, const Point& point) {
    for (NSUInteger index = 0; index < [screens count]; ++index)
        if (has([[screens objectAtIndex:index] frame], point))
            return index;
    return NSNotFound;
}

double refreshRateOf(NSScreen* screen) {
    CGDisplayModeRef const mode = CGDisplayCopyDisplayMode(displayNumberOf(screen));
    if (mode == nullptr)
        return 0;
    const double rate = CGDisplayModeGetRefreshRate(mode);
    CGDisplayModeRelease(mode);
    return rate;
}

}  // namespace

Screen Screen::getScreenFromPoint(const Point& point) {
    const ScopedARPool pool;
    NSArray* const screens = [NSScreen screens];
    const NSUInteger index = indexAt(screens, point);
    return index == NSNotFound ? invalidScreen() : screenAt(screens, index);
}

Screen Screen::getScreenFromRect(const Rectangle& rectangle) {
    const ScopedARPool pool;
    NSArray* const screens = [NSScreen screens];
    const NSRect wanted = toPlatform(rectangle);
    NSUInteger best = NSNotFound;
    CGFloat bestArea = 0;
    for (NSUInteger index = 0; index < [screens count]; ++index) {
        const NSRect part = NSIntersectionRect(wanted, [[screens objectAtIndex:index] frame]);
        // Of a rectangle that is turned inside out both sides are negative.
        const CGFloat area = NSIsEmptyRect(part) ? 0 : part.size.width * part.size.height;
        if (area > bestArea) {
            best = index;
            bestArea = area;
        }
    }
    return best == NSNotFound ? invalidScreen() : screenAt(screens, best);
}

Screen Screen::getScreenFromHandle(void* handle) {
    const ScopedARPool pool;
    NSArray* const screens = [NSScreen screens];
    for (NSUInteger index = 0; index < [screens count]; ++index)
        if (static_cast<void*>([screens objectAtIndex:index]) == handle)
            return screenAt(screens, index);
    return invalidScreen();
}

Screen Screen::getPrimaryScreen() {
    const ScopedARPool pool;
    NSArray* const screens = [NSScreen screens];
    return [screens count] == 0 ? invalidScreen() : screenAt(screens, 0);
}

std::vector<Screen> Screen::getAllScreens() {
    const ScopedARPool pool;
    NSArray* const screens = [[NSScreen screens] retain];
    std::vector<Screen> result;
    result.reserve([screens count]);
    for (NSUInteger index = 0; index < [screens count]; ++index)
        result.push_back(screenAt(screens, index));
    [screens release];
    return result;
}

Rectangle Screen::getScreenWorkingArea(const Point& point) {
    const ScopedARPool pool;
    NSArray* const screens = [NSScreen screens];
    const NSUInteger index = indexAt(screens, point);
    return index == NSNotFound ? Rectangle()
                               : toLibrary([[screens objectAtIndex:index] visibleFrame]);
}

Rectangle Screen::getScreenBounds(const Point& point) {
    const ScopedARPool pool;
    NSArray* const screens = [NSScreen screens];
    const NSUInteger index = indexAt(screens, point);
    return index == NSNotFound ? Rectangle() : toLibrary([[screens objectAtIndex:index] frame]);
}

int Screen::displayID() const {
    const ScopedARPool pool;
    NSArray* const screens = [NSScreen screens];
    if (id < 0 || static_cast<NSUInteger>(id) >= [screens count]) {
        debug::assertionFailed("src/Mac/ScreenMac", 181, "id >= 0 && id < [screens count]");
        return 0;
    }
    return static_cast<int>(displayNumberOf([screens objectAtIndex:static_cast<NSUInteger>(id)]));
}

ScreenDetails Screen::details() const {
    if (!isValid || handle == nullptr)
        return {};
    const ScopedARPool pool;
    NSScreen* const screen = static_cast<NSScreen*>(handle);
    return {
        [[screen localizedName] toStdString], [screen backingScaleFactor], refreshRateOf(screen)};
}

}  // namespace tav::ula
