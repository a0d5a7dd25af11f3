// SPDX-License-Identifier: MIT
// Built from the lower edge upwards: buttons, box, texts. As wide as the buttons need and no
// narrower than the texts are good to read in.
#import "AppKit/AlertPanel.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr CGFloat kMargin = 20;
constexpr CGFloat kGap = 12;
constexpr CGFloat kIcon = 64;
constexpr CGFloat kTextLeft = kMargin + kIcon + 16;
constexpr CGFloat kTextInset = 2;
constexpr CGFloat kNarrowest = 460;
constexpr CGFloat kButtonWidth = 80;
constexpr CGFloat kButtonHeight = 28;
constexpr CGFloat kButtonPadding = 16;

CGFloat widthOf(NSButton* button) {
    return std::max(kButtonWidth, [[button cell] cellSize].width + kButtonPadding);
}

CGFloat widthFor(NSArray* buttons) {
    CGFloat width = kTextLeft + kMargin - kGap;
    for (NSButton* button in buttons)
        width += widthOf(button) + kGap;
    return std::max(kNarrowest, width);
}

// As high as the text is in this width. What cells say of it is for one line.
CGFloat heightOf(NSString* text, NSFont* font, CGFloat width) {
    NSDictionary* const attributes = [NSDictionary dictionaryWithObject:font
                                                                 forKey:NSFontAttributeName];
    NSAttributedString* const drawn =
        [[[NSAttributedString alloc] initWithString:text attributes:attributes] autorelease];
    const NSRect bounds = [drawn boundingRectWithSize:NSMakeSize(width - 2 * kTextInset, 100000)
                                              options:NSStringDrawingUsesLineFragmentOrigin];
    return std::ceil(NSHeight(bounds)) + 2 * kTextInset;
}

NSTextField* textField(NSString* text, NSFont* font, CGFloat width) {
    NSTextField* const field = [[[NSTextField alloc]
        initWithFrame:NSMakeRect(0, 0, width, heightOf(text, font, width))] autorelease];
    [field setEditable:NO];
    [field setSelectable:YES];
    [field setBezeled:NO];
    [field setDrawsBackground:NO];
    [field setFont:font];
    [[field cell] setWraps:YES];
    [field setStringValue:text];
    return field;
}

}  // namespace

@interface ULAAlertPanel (Layout)
- (void)addButtons;
- (void)addBox:(NSButton*)box;
- (void)addTextsOf:(NSAlert*)alert;
- (void)addIconOf:(NSAlert*)alert;
@end

@implementation ULAAlertPanel

- (id)initWithAlert:(NSAlert*)alert box:(NSButton*)box {
    NSArray* const answers = [alert buttons];
    self = [super initWithContentRect:NSMakeRect(0, 0, widthFor(answers), 100)
                            styleMask:NSTitledWindowMask
                              backing:NSBackingStoreBuffered
                                defer:YES];
    if (self == nil)
        return nil;
    _answers = [answers copy];
    [self setTitle:@" "];
    [self setHidesOnDeactivate:NO];
    [self setReleasedWhenClosed:NO];
    [self setLevel:NSModalPanelWindowLevel];
    _top = kMargin;
    [self addButtons];
    [self addBox:box];
    [self addTextsOf:alert];
    [self setContentSize:NSMakeSize(NSWidth([[self contentView] frame]), _top - kGap + kMargin)];
    [self addIconOf:alert];
    [self center];
    return self;
}

- (void)dealloc {
    [_answers release];
    [super dealloc];
}

// The first one rightmost.
- (void)addButtons {
    CGFloat right = NSWidth([[self contentView] frame]) - kMargin;
    for (NSButton* button in _answers) {
        const CGFloat width = widthOf(button);
        [button setFrame:NSMakeRect(right - width, _top, width, kButtonHeight)];
        [button setAutoresizingMask:NSViewMinXMargin | NSViewMaxYMargin];
        [button setTarget:self];
        [button setAction:@selector(answer:)];
        [[self contentView] addSubview:button];
        right -= width + kGap;
    }
    if ([_answers count] > 0)
        [self setInitialFirstResponder:[_answers objectAtIndex:0]];
    _top += kButtonHeight + kGap;
}

- (void)addBox:(NSButton*)box {
    if (box == nil)
        return;
    const NSSize size = [[box cell] cellSize];
    [box setFrame:NSMakeRect(kTextLeft, _top, size.width, size.height)];
    [box setAutoresizingMask:NSViewMaxXMargin | NSViewMaxYMargin];
    [[self contentView] addSubview:box];
    _top += size.height + kGap;
}

// Few words begin beside the icon's upper edge, too.
- (void)addTextsOf:(NSAlert*)alert {
    const CGFloat width = NSWidth([[self contentView] frame]) - kTextLeft - kMargin;
    NSMutableArray* const fields = [NSMutableArray array];
    if ([[alert informativeText] length] > 0)
        [fields addObject:textField([alert informativeText], [NSFont systemFontOfSize:12], width)];
    if ([[alert messageText] length] > 0)
        [fields addObject:textField([alert messageText], [NSFont boldSystemFontOfSize:14], width)];
    CGFloat height = 0;
    for (NSTextField* field in fields)
        height += NSHeight([field frame]) + kGap;
    _top = std::max(_top, kMargin + kButtonHeight + kGap + kIcon + kGap - height);
    for (NSTextField* field in fields) {
        [field setFrameOrigin:NSMakePoint(kTextLeft, _top)];
        [field setAutoresizingMask:NSViewMaxXMargin | NSViewMaxYMargin];
        [[self contentView] addSubview:field];
        _top += NSHeight([field frame]) + kGap;
    }
}

- (void)addIconOf:(NSAlert*)alert {
    NSImage* const icon = [alert icon] != nil
                              ? [alert icon]
                              : [[NSApplication sharedApplication] applicationIconImage];
    const CGFloat height = NSHeight([[self contentView] frame]);
    NSImageView* const view = [[[NSImageView alloc]
        initWithFrame:NSMakeRect(kMargin, height - kMargin - kIcon, kIcon, kIcon)] autorelease];
    [view setImage:icon];
    [view setImageScaling:NSScaleProportionally];
    [view setAutoresizingMask:NSViewMaxXMargin | NSViewMinYMargin];
    [[self contentView] addSubview:view];
}

// The keys of the buttons count whatever has the focus.
- (void)sendEvent:(NSEvent*)event {
    if ([event type] != NSKeyDown || ![self performKeyEquivalent:event])
        [super sendEvent:event];
}

- (void)answer:(id)sender {
    [NSApp stopModalWithCode:static_cast<NSInteger>([_answers indexOfObjectIdenticalTo:sender])];
}

- (NSInteger)runUntilAnswered {
    const NSInteger answer = [[NSApplication sharedApplication] runModalForWindow:self];
    [self orderOut:nil];
    return answer >= 0 && answer < static_cast<NSInteger>([_answers count]) ? answer : -1;
}

@end
