// SPDX-License-Identifier: MIT
// GNUstep hands out its own image of the application's icon, so that drawing on it cannot be
// undone, keeps nothing of what is drawn when it copies one, makes it as small as its windows need
// it, and takes no nil. Here each question gives a copy in the icon's own size, an image counts as
// it looks, and nil stands for the icon that was there at first.
#import <AppKit/AppKit.h>

#include "AppKit/LauncherProgress.h"
#include "Foundation/ReplaceMethod.h"

#include <algorithm>

namespace {

// Posted by whoever shows progress on the icon: with the fraction, or without for none.
NSString* const kProgressDidChange = @"ApplicationTaskProgressDidChange";

using SetIcon = void (*)(id, SEL, NSImage*);
using GetIcon = NSImage* (*)(id, SEL);
using FinishLaunching = void (*)(id, SEL);

SetIcon originalSet = nullptr;
GetIcon originalGet = nullptr;
FinishLaunching originalFinish = nullptr;
NSImage* plainIcon = nil;    // as GNUstep loads it
NSImage* plainPixels = nil;  // the same in the size in which it is given out, once it was
NSImage* shownIcon = nil;    // one bitmap; none for the plain one
bool isLoading = false;
bool isDrawing = false;

// Icon files may be far larger: the platform shows them in this size.
constexpr CGFloat kLargestPlainIcon = 128;

NSSize plainSize() {
    const NSSize size = [plainIcon size];
    const CGFloat scale =
        std::min<CGFloat>(1, kLargestPlainIcon / std::max(size.width, size.height));
    return NSMakeSize(size.width * scale, size.height * scale);
}

// As it looks, in one bitmap.
NSImage* flattened(NSImage* image, NSSize size) {
    const NSRect whole = NSMakeRect(0, 0, size.width, size.height);
    NSImage* canvas = [[[NSImage alloc] initWithSize:size] autorelease];
    [canvas lockFocus];
    [image drawInRect:whole fromRect:NSZeroRect operation:NSCompositeCopy fraction:1];
    NSBitmapImageRep* pixels =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:whole] autorelease];
    [canvas unlockFocus];
    NSImage* result = [[[NSImage alloc] initWithSize:size] autorelease];
    if (pixels != nil)
        [result addRepresentation:pixels];
    return result;
}

// Of one bitmap, without the way over the display.
NSImage* copyOf(NSImage* image) {
    NSImage* copy = [[[NSImage alloc] initWithSize:[image size]] autorelease];
    for (NSImageRep* pixels in [image representations])
        [copy addRepresentation:[[pixels copy] autorelease]];
    return copy;
}

// Asked for the first time, GNUstep's class loads the icon and sets it itself.
void loadPlainIcon(id application) {
    if (plainIcon != nil)
        return;
    isLoading = true;
    originalGet(application, @selector(applicationIconImage));
    isLoading = false;
}

// The window in which an image is drawn asks for the icon itself when it is made.
void drawPlainPixels() {
    isDrawing = true;
    plainPixels = [flattened(plainIcon, plainSize()) retain];
    isDrawing = false;
}

NSImage* applicationIconImage(id self, SEL command) {
    loadPlainIcon(self);
    if (isDrawing || plainIcon == nil)
        return originalGet(self, command);
    if (shownIcon != nil)
        return copyOf(shownIcon);
    if (plainPixels == nil)
        drawPlainPixels();
    return copyOf(plainPixels);
}

void replaceShownIcon(NSImage* image) {
    [image retain];
    [shownIcon release];
    shownIcon = image;
}

}  // namespace

@interface ULAApplicationIcon : NSObject
@end

@implementation ULAApplicationIcon

+ (void)progressDidChange:(NSNotification*)notification {
    NSNumber* fraction = [[notification userInfo] objectForKey:@"fraction"];
    appkit::showLauncherProgress(fraction == nil ? std::nullopt
                                                 : std::optional([fraction doubleValue]));
}

// Whoever shows progress sets the icon first.
static void listenForProgress() {
    static bool isListening = false;
    if (isListening)
        return;
    isListening = true;
    [[NSNotificationCenter defaultCenter] addObserver:[ULAApplicationIcon class]
                                             selector:@selector(progressDidChange:)
                                                 name:kProgressDidChange
                                               object:nil];
}

static void setApplicationIconImage(id self, SEL command, NSImage* image) {
    if (isLoading) {
        plainIcon = [image retain];
        originalSet(self, command, image);
        return;
    }
    listenForProgress();
    loadPlainIcon(self);
    replaceShownIcon(image == nil ? nil : flattened(image, [image size]));
    originalSet(self, command, image == nil ? plainIcon : shownIcon);
}

static void finishLaunching(id self, SEL command) {
    originalFinish(self, command);
    appkit::clearLeftLauncherProgress();
}

+ (void)load {
    const char* name = "NSApplication";
    originalSet = foundation::replaceInstanceMethod(name, @selector(setApplicationIconImage:),
                                                    setApplicationIconImage);
    originalGet = foundation::replaceInstanceMethod(name, @selector(applicationIconImage),
                                                    applicationIconImage);
    originalFinish =
        foundation::replaceInstanceMethod(name, @selector(finishLaunching), finishLaunching);
}

@end
