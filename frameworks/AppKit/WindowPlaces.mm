// SPDX-License-Identifier: MIT
// GNUstep's display server places windows from the lower left corner of all displays together,
// while the frames of the screens here count from that of the main display. What its conversions
// between AppKit's places and those of X take and give is moved by the difference.
#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSDisplayServer.h>

#include "ApplicationServices/DisplayList.h"
#include "Foundation/ReplaceMethod.h"

#include <objc/runtime.h>

using displays::DisplayList;

namespace {

using FrameConversion = NSRect (*)(id, SEL, NSRect, void*);
using WindowMove = void (*)(id, SEL, NSPoint, int);
using MouseLocation = NSPoint (*)(id, SEL, int, int*);
using MouseMove = void (*)(id, SEL, NSPoint, int);
using ServerClassChoice = void (*)(id, SEL, Class);

FrameConversion frameToX = nullptr;
FrameConversion frameToHints = nullptr;
FrameConversion frameFromX = nullptr;
WindowMove moveWindow = nullptr;
MouseLocation mouseLocation = nullptr;
MouseMove moveMouse = nullptr;
ServerClassChoice chooseServerClass = nullptr;

// The main display's lower left corner as the server counts. Listing its screens takes half a
// millisecond, so that is done once for each arrangement.
// Thread: the main one, as all of the server.
NSPoint originOf(GSDisplayServer* server) {
    static auto* const known = new DisplayList::Snapshot;
    static NSPoint origin = NSZeroPoint;
    DisplayList::Snapshot displays = DisplayList::ofProcess().current();
    if (displays != *known) {
        NSArray* const numbers = [server screenList];
        origin = [numbers count] == 0
                     ? NSZeroPoint
                     : [server boundsForScreen:[[numbers objectAtIndex:0] intValue]].origin;
        *known = std::move(displays);
    }
    return origin;
}

NSPoint toServer(GSDisplayServer* server, NSPoint place) {
    const NSPoint origin = originOf(server);
    return NSMakePoint(place.x + origin.x, place.y + origin.y);
}

NSRect toServer(GSDisplayServer* server, NSRect frame) {
    frame.origin = toServer(server, frame.origin);
    return frame;
}

NSPoint fromServer(GSDisplayServer* server, NSPoint place) {
    const NSPoint origin = originOf(server);
    return NSMakePoint(place.x - origin.x, place.y - origin.y);
}

NSRect convertToX(id server, SEL selector, NSRect frame, void* window) {
    return frameToX(server, selector, toServer(server, frame), window);
}

NSRect convertToHints(id server, SEL selector, NSRect frame, void* window) {
    return frameToHints(server, selector, toServer(server, frame), window);
}

NSRect convertFromX(id server, SEL selector, NSRect frame, void* window) {
    NSRect converted = frameFromX(server, selector, frame, window);
    converted.origin = fromServer(server, converted.origin);
    return converted;
}

void moveWindowTo(id server, SEL selector, NSPoint place, int window) {
    moveWindow(server, selector, toServer(server, place), window);
}

NSPoint locateMouse(id server, SEL selector, int screen, int* window) {
    return fromServer(server, mouseLocation(server, selector, screen, window));
}

void moveMouseTo(id server, SEL selector, NSPoint place, int screen) {
    moveMouse(server, selector, toServer(server, place), screen);
}

template <class Function>
void replace(Class type, const char* name, Function ours, Function& theirs) {
    Method const method = class_getInstanceMethod(type, sel_registerName(name));
    if (method != nullptr && theirs == nullptr)
        theirs = foundation::replaceMethod(method, ours);
}

// The server comes with a bundle that is loaded with the first application object.
void chooseAndMend(id self, SEL selector, Class type) {
    chooseServerClass(self, selector, type);
    // The one of X; others place windows otherwise.
    if (class_getInstanceMethod(type, sel_registerName("_OSFrameToXFrame:for:")) == nullptr)
        return;
    replace(type, "_OSFrameToXFrame:for:", convertToX, frameToX);
    replace(type, "_OSFrameToXHints:for:", convertToHints, frameToHints);
    replace(type, "_XFrameToOSFrame:for:", convertFromX, frameFromX);
    replace(type, "movewindow::", moveWindowTo, moveWindow);
    replace(type, "mouseLocationOnScreen:window:", locateMouse, mouseLocation);
    replace(type, "setMouseLocation:onScreen:", moveMouseTo, moveMouse);
}

}  // namespace

@interface ULAWindowPlaces : NSObject
@end

@implementation ULAWindowPlaces

+ (void)load {
    chooseServerClass = foundation::replaceClassMethod(
        "GSDisplayServer", @selector(setDefaultServerClass:), chooseAndMend);
}

@end
