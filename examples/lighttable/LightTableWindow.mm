// SPDX-License-Identifier: MIT
#import "examples/lighttable/LightTableWindow.h"

#import "examples/lighttable/FlatButtonCell.h"
#import "examples/lighttable/FlatScroller.h"
#import "examples/lighttable/Look.h"
#import "examples/lighttable/SizeSliderCell.h"

#include <algorithm>

using namespace lighttable;

namespace {

constexpr CGFloat kSidebarWidth = 232;
constexpr CGFloat kHeaderHeight = 60;
constexpr CGFloat kFooterHeight = 32;
constexpr CGFloat kImportHeight = 56;
constexpr CGFloat kMargin = 20;
constexpr CGFloat kButtonHeight = 28;
constexpr CGFloat kButtonTop = (kHeaderHeight - kButtonHeight) / 2;

constexpr unsigned kAtRight = NSViewMinXMargin;

NSTextField* addLabel(NSView* view, NSRect frame, NSFont* font, NSColor* colour) {
    NSTextField* const label = look::makeLabel(frame, font, colour);
    [[label cell] setLineBreakMode:NSLineBreakByTruncatingMiddle];
    [label setAutoresizingMask:NSViewWidthSizable];
    [view addSubview:label];
    return label;
}

}  // namespace

@implementation LightTableWindow

- (id)initWithFrame:(NSRect)frame
      thumbnailSide:(int)side
             loader:(ThumbnailLoader*)loader
            actions:(id<LightTableActions>)actions {
    self = [super initWithContentRect:frame
                            styleMask:NSTitledWindowMask | NSClosableWindowMask |
                                      NSMiniaturizableWindowMask | NSResizableWindowMask
                              backing:NSBackingStoreBuffered
                                defer:NO];
    if (self == nil)
        return nil;
    [self setTitle:@"Light Table"];
    [self setMinSize:NSMakeSize(640, 400)];
    [self setReleasedWhenClosed:NO];
    [self setBackgroundColor:look::canvas()];
    [self makeSidebar];
    [self makeThumbnails:loader side:side];
    [self makeHeader:actions];
    [self makeFooter:actions side:side];
    [self makeImportBar:actions];
    [self layoutAreas];
    [self setInitialFirstResponder:_thumbnails];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(layoutAreas)
                                                 name:NSWindowDidResizeNotification
                                               object:self];
    return self;
}

- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [super dealloc];
}

- (void)makeSidebar {
    _folders =
        [[[FolderView alloc] initWithFrame:NSMakeRect(0, 0, kSidebarWidth, 100)] autorelease];
    _folderScroll = makeScrollView(NSMakeRect(0, 0, kSidebarWidth, 100), _folders, look::sidebar());
    _sidebarEdge = [[[BarView alloc] initWithFrame:NSMakeRect(0, 0, 1, 100)
                                            lineAt:NSMinXEdge] autorelease];
    [[self contentView] addSubview:_folderScroll];
    [[self contentView] addSubview:_sidebarEdge];
}

- (void)makeThumbnails:(ThumbnailLoader*)loader side:(int)side {
    const NSRect frame = NSMakeRect(0, 0, 100, 100);
    _thumbnails = [[[ThumbnailView alloc] initWithFrame:frame loader:loader side:side] autorelease];
    _thumbnailScroll = makeScrollView(frame, _thumbnails, look::canvas());
    [[self contentView] addSubview:_thumbnailScroll];
}

- (void)makeHeader:(id<LightTableActions>)actions {
    _header = [[[BarView alloc] initWithFrame:NSMakeRect(0, 0, 640, kHeaderHeight)
                                       lineAt:NSMinYEdge] autorelease];
    const CGFloat accountX = 640 - kMargin - 92, importX = accountX - 8 - 92;
    _title = addLabel(_header, NSMakeRect(kMargin, 30, importX - 2 * kMargin, 20),
                      look::boldFont(14), look::text());
    _path = addLabel(_header, NSMakeRect(kMargin, 11, importX - 2 * kMargin, 17), look::font(11),
                     look::quietText());
    NSButton* const import =
        makeButton(@"Import…", NSMakeRect(importX, kButtonTop, 92, kButtonHeight), actions,
                   @selector(importPictures:));
    NSButton* const account =
        makeButton(@"Account…", NSMakeRect(accountX, kButtonTop, 92, kButtonHeight), actions,
                   @selector(showAccount:));
    for (NSButton* button : {import, account}) {
        [button setAutoresizingMask:kAtRight];
        [_header addSubview:button];
    }
    [[self contentView] addSubview:_header];
}

- (void)makeFooter:(id<LightTableActions>)actions side:(int)side {
    _footer = [[[BarView alloc] initWithFrame:NSMakeRect(0, 0, 640, kFooterHeight)
                                       lineAt:NSMaxYEdge] autorelease];
    const CGFloat sliderX = 640 - kMargin - 120;
    _status = addLabel(_footer, NSMakeRect(kMargin, 7, sliderX - 2 * kMargin, 17), look::font(11),
                       look::quietText());
    _slider = makeSizeSlider(NSMakeRect(sliderX, 6, 120, 20), 80, 320, actions,
                             @selector(changeThumbnailSize:));
    [_slider setIntValue:side];
    [_slider setAutoresizingMask:kAtRight];
    [_footer addSubview:_slider];
    [[self contentView] addSubview:_footer];
}

- (void)makeImportBar:(id<LightTableActions>)actions {
    _importBar = [[[BarView alloc] initWithFrame:NSMakeRect(0, 0, 640, kImportHeight)
                                          lineAt:NSMaxYEdge] autorelease];
    const CGFloat cancelX = 640 - kMargin - 80;
    _importText = addLabel(_importBar, NSMakeRect(kMargin, 29, cancelX - 2 * kMargin, 17),
                           look::font(12), look::text());
    _importProgress = [[[ProgressBar alloc]
        initWithFrame:NSMakeRect(kMargin, 15, cancelX - 2 * kMargin, 6)] autorelease];
    [_importProgress setAutoresizingMask:NSViewWidthSizable];
    NSButton* const cancel = makeButton(@"Cancel", NSMakeRect(cancelX, 14, 80, kButtonHeight),
                                        actions, @selector(cancelImport:));
    [cancel setAutoresizingMask:kAtRight];
    [_importBar addSubview:_importProgress];
    [_importBar addSubview:cancel];
    [_importBar setHidden:YES];
    [[self contentView] addSubview:_importBar];
}

- (void)layoutAreas {
    const NSSize size = [[self contentView] bounds].size;
    const CGFloat left = kSidebarWidth + 1, width = std::max<CGFloat>(1, size.width - left);
    const CGFloat bottom = kFooterHeight + (_isImporting ? kImportHeight : 0);
    const CGFloat top = size.height - kHeaderHeight;
    [_folderScroll setFrame:NSMakeRect(0, 0, kSidebarWidth, size.height)];
    [_sidebarEdge setFrame:NSMakeRect(kSidebarWidth, 0, 1, size.height)];
    [_header setFrame:NSMakeRect(left, top, width, kHeaderHeight)];
    [_footer setFrame:NSMakeRect(left, 0, width, kFooterHeight)];
    [_importBar setFrame:NSMakeRect(left, kFooterHeight, width, kImportHeight)];
    [_thumbnailScroll setFrame:NSMakeRect(left, bottom, width, std::max<CGFloat>(1, top - bottom))];
    [[self contentView] setNeedsDisplay:YES];
}

- (FolderView*)folders {
    return _folders;
}

- (ThumbnailView*)thumbnails {
    return _thumbnails;
}

- (NSSlider*)sizeSlider {
    return _slider;
}

- (void)showTitle:(const std::string&)title path:(const std::string&)path {
    [_title setStringValue:look::string(title)];
    [_path setStringValue:look::fitted(look::string(path), look::font(11), NSWidth([_path frame]))];
    [self setTitle:[look::string(title) stringByAppendingString:@" – Light Table"]];
}

- (void)showStatus:(const std::string&)text {
    [_status setStringValue:look::string(text)];
}

- (void)showImport:(const std::string&)text fraction:(double)fraction {
    [_importText setStringValue:look::string(text)];
    [_importProgress setFraction:fraction];
    if (_isImporting)
        return;
    _isImporting = YES;
    [_importBar setHidden:NO];
    [self layoutAreas];
}

- (void)endImport {
    _isImporting = NO;
    [_importBar setHidden:YES];
    [self layoutAreas];
}

@end
