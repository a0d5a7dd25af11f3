// SPDX-License-Identifier: MIT
// GNUstep hands out its own image of the application's icon, so that drawing on it cannot be
// undone, keeps nothing of what is drawn when it copies one, and takes no nil. Here each question
// gives a copy, an image counts as it looks, and nil stands for the icon that was there at first.
#import <AppKit/AppKit.h>

#include "AppKit/LauncherProgress.h"
#include "AppKit/ReplaceWorkspaceMethod.h"

#include <cmath>

namespace {

// Posted by whoever shows progress on the icon: with the fraction, or without for none.
NSString* const kProgressDidChange = @"ApplicationTaskProgressDidChange";

using SetIcon = void (*)(id, SEL, NSImage*);
using GetIcon = NSImage* (*)(id, SEL);
using FinishLaunching = void (*)(id, SEL);

SetIcon originalSet = nullptr;
GetIcon originalGet = nullptr;
FinishLaunching originalFinish = nullptr;
NSImage* plainIcon = nil;  // once the icon has been set

// As it looks in its own size, in one bitmap.
NSImage* flattened(NSImage* image) {
    const NSSize size = [image size];
    NSImage* canvas = [[[NSImage alloc] initWithSize:size] autorelease];
    [canvas lockFocus];
    [image compositeToPoint:NSZeroPoint operation:NSCompositeCopy];
    NSBitmapImageRep* pixels = [[[NSBitmapImageRep alloc]
        initWithFocusedViewRect:NSMakeRect(0, 0, size.width, size.height)] autorelease];
    [canvas unlockFocus];
    NSImage* result = [[[NSImage alloc] initWithSize:size] autorelease];
    if (pixels != nil)
        [result addRepresentation:pixels];
    return result;
}

// Drawing makes windows, which show the icon, and GNUstep's answer may be to look for it and to set
// it: what is asked meanwhile is GNUstep's own business.
class Nested {
public:
    Nested() { ++_depth; }
    ~Nested() { --_depth; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

    bool isWithinAnother() const { return _depth > 1; }

private:
    static inline int _depth = 0;
};

NSImage* applicationIconImage(id self, SEL command) {
    const Nested nested;
    if (nested.isWithinAnother())
        return originalGet(self, command);
    NSImage* icon = originalGet(self, command);
    return icon == nil ? nil : flattened(icon);
}

}  // namespace

@interface ULApplicationIcon : NSObject
@end

@implementation ULApplicationIcon

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
    [[NSNotificationCenter defaultCenter] addObserver:[ULApplicationIcon class]
                                             selector:@selector(progressDidChange:)
                                                 name:kProgressDidChange
                                               object:nil];
}

static void setApplicationIconImage(id self, SEL command, NSImage* image) {
    listenForProgress();
    const Nested nested;
    if (nested.isWithinAnother())
        return originalSet(self, command, image);
    if (plainIcon == nil)
        plainIcon = [originalGet(self, @selector(applicationIconImage)) retain];
    originalSet(self, command, image == nil ? plainIcon : flattened(image));
}

static void finishLaunching(id self, SEL command) {
    originalFinish(self, command);
    appkit::clearLeftLauncherProgress();
}

+ (void)load {
    const char* name = "NSApplication";
    originalSet =
        appkit::replaceMethod(name, @selector(setApplicationIconImage:), setApplicationIconImage);
    originalGet =
        appkit::replaceMethod(name, @selector(applicationIconImage), applicationIconImage);
    originalFinish = appkit::replaceMethod(name, @selector(finishLaunching), finishLaunching);
}

@end
