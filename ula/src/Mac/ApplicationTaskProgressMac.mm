// SPDX-License-Identifier: MIT
#include "ula/src/Mac/ApplicationTaskProgressMac.h"

#include "ula/ScopedARPool.h"
#include "ula/src/Core/PlatformApplicationTaskProgress.h"

#import <AppKit/AppKit.h>

namespace tav::ula {

namespace {

constexpr CGFloat kMargin = 5.0;
constexpr CGFloat kBarHeight = 15.0;

/// For docks that draw progress themselves, and for the application's own use.
void announce(NSDictionary* progress) {
    [[NSNotificationCenter defaultCenter] postNotificationName:@"ApplicationTaskProgressDidChange"
                                                        object:NSApp
                                                      userInfo:progress];
}

void showPlainIcon() {
    [NSApp setApplicationIconImage:nil];
}

void setColour(TaskProgressState state) {
    switch (state) {
    case TaskProgressGreen:
        [[NSColor greenColor] set];
        break;
    case TaskProgressYellow:
    case TaskProgressYellowToo:
        [[NSColor yellowColor] set];
        break;
    case TaskProgressRed:
        [[NSColor redColor] set];
        break;
    default:
        break;
    }
}

}  // namespace

ApplicationTaskProgress* createPlatformApplicationTaskProgress() {
    return new ApplicationTaskProgressMac;
}

void ApplicationTaskProgressMac::showProgress(void*, const double& fraction,
                                              const TaskProgressState& state) {
    const ScopedARPool pool;
    showPlainIcon();
    NSImage* const icon = [NSApp applicationIconImage];
    // Without an application's object there is nothing to draw on.
    if (icon == nil)
        return;
    [icon lockFocus];
    const CGFloat width = ([icon size].width - 2 * kMargin) * fraction;
    setColour(state);
    NSRectFill(NSMakeRect(kMargin, kMargin, width, kBarHeight));
    [icon unlockFocus];
    [NSApp setApplicationIconImage:icon];
    announce([NSDictionary dictionaryWithObject:[NSNumber numberWithDouble:fraction]
                                         forKey:@"fraction"]);
}

void ApplicationTaskProgressMac::clearProgress() {
    const ScopedARPool pool;
    showPlainIcon();
    announce(nil);
}

}  // namespace tav::ula
