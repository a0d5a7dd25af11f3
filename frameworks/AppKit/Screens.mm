// SPDX-License-Identifier: MIT
// GNUstep's screens need its application object, count from the lower edge of all displays together
// and know no panels; without a display server they end in an exception. The list is made anew
// here.
#import <AppKit/AppKit.h>

#import "AppKit/DisplayScreen.h"
#include "ApplicationServices/DisplayList.h"
#include "Foundation/ReplaceMethod.h"

#include <mutex>

using displays::DisplayList;

namespace {

std::mutex screensMutex;
DisplayList::Snapshot screensOf;
NSArray* screens = nil;

// A display that is as it was keeps its screen, so that those who hold it find it in the list.
NSScreen* screenOf(const displays::Display& display, int mainHeight) {
    for (ULADisplayScreen* known in screens)
        if ([known display] == display && [known mainHeight] == mainHeight)
            return [[known retain] autorelease];
    return [[[ULADisplayScreen alloc] initWithDisplay:display mainHeight:mainHeight] autorelease];
}

NSArray* screensFrom(const displays::Displays& displays) {
    NSMutableArray* list = [NSMutableArray array];
    for (const displays::Display& display : displays)
        [list addObject:screenOf(display, displays.front().frame.height)];
    return list;
}

NSArray* currentScreens(id, SEL) {
    DisplayList::Snapshot displays = DisplayList::ofProcess().current();
    std::lock_guard lock(screensMutex);
    if (displays != screensOf) {
        NSArray* const made = [screensFrom(*displays) copy];
        [screens release];
        screens = made;
        screensOf = std::move(displays);
    }
    return [[screens retain] autorelease];
}

// Where the user works, or else the one with the menu bar. Nil without a display.
NSScreen* mainScreen(id, SEL) {
    NSScreen* const ofKeyWindow = [[NSApp keyWindow] screen];
    if (ofKeyWindow != nil)
        return ofKeyWindow;
    NSArray* const all = [NSScreen screens];
    return [all count] > 0 ? [all objectAtIndex:0] : nil;
}

}  // namespace

@interface ULAScreens : NSObject
@end

@implementation ULAScreens

+ (void)load {
    foundation::replaceClassMethod("NSScreen", @selector(screens), currentScreens);
    foundation::replaceClassMethod("NSScreen", @selector(mainScreen), mainScreen);
}

@end
