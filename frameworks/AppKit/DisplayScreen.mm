// SPDX-License-Identifier: MIT
#import "AppKit/DisplayScreen.h"

#import "AppKit/NSScreen+Names.h"

#import <GNUstepGUI/GSDisplayServer.h>

namespace {

// The platform's y grows upwards from the lower edge of the main display.
NSRect rectangleOf(const displays::Area& area, int mainHeight) {
    return NSMakeRect(area.x, mainHeight - (area.y + area.height), area.width, area.height);
}

NSWindowDepth depthOf(int bitsPerPixel) {
    constexpr int kSamples = 3;
    // A depth is samples times bits. Sixteen bits are no such product, and stand as one sample.
    return bitsPerPixel % kSamples == 0 ? _GSRGBBitValue | (bitsPerPixel / kSamples)
                                        : _GSGrayBitValue | bitsPerPixel;
}

}  // namespace

@implementation ULADisplayScreen

// The initializers above this one ask GNUstep's display server, which need not be there.
- (id)initWithDisplay:(const displays::Display&)display mainHeight:(int)mainHeight {
    _display = display;
    _mainHeight = mainHeight;
    return self;
}

- (const displays::Display&)display {
    return _display;
}

- (int)mainHeight {
    return _mainHeight;
}

- (NSRect)frame {
    return rectangleOf(_display.frame, _mainHeight);
}

- (NSRect)visibleFrame {
    return rectangleOf(_display.workingArea, _mainHeight);
}

- (NSWindowDepth)depth {
    return depthOf(_display.bitsPerPixel);
}

- (const NSWindowDepth*)supportedWindowDepths {
    return NSAvailableWindowDepths();
}

- (CGFloat)userSpaceScaleFactor {
    return 1;
}

- (CGFloat)backingScaleFactor {
    return _display.scale;
}

- (NSString*)localizedName {
    NSString* const name = [NSString stringWithUTF8String:_display.name.c_str()];
    return name != nil ? name : @"";
}

- (NSDictionary*)deviceDescription {
    return @{
        @"NSScreenNumber" : [NSNumber numberWithUnsignedInt:_display.id],
        NSDeviceIsScreen : @"YES",
        NSDeviceSize : [NSValue valueWithSize:[self frame].size],
        NSDeviceResolution : [NSValue valueWithSize:NSMakeSize(72, 72)],
        NSDeviceBitsPerSample : [NSNumber numberWithInt:_display.bitsPerPixel / 3],
        NSDeviceColorSpaceName : NSDeviceRGBColorSpace,
    };
}

// What GNUstep's own display server calls this screen: windows are made with this number.
- (int)screenNumber {
    GSDisplayServer* const server = GSCurrentServer();
    NSArray* const numbers = [server screenList];
    if ([numbers count] == 0)
        return 0;
    const NSRect main = [server boundsForScreen:[[numbers objectAtIndex:0] intValue]];
    for (NSNumber* number in numbers) {
        const NSRect bounds = [server boundsForScreen:[number intValue]];
        if (NSEqualRects(NSOffsetRect(bounds, -NSMinX(main), -NSMinY(main)), [self frame]))
            return [number intValue];
    }
    return 0;
}

- (BOOL)isEqual:(id)other {
    if (![other isKindOfClass:[ULADisplayScreen class]])
        return NO;
    return _display.id == [static_cast<ULADisplayScreen*>(other) display].id;
}

- (NSUInteger)hash {
    return _display.id;
}

- (NSString*)description {
    return [NSString
        stringWithFormat:@"<NSScreen %@ %@>", [self localizedName], NSStringFromRect([self frame])];
}

@end
