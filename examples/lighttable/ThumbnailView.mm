// SPDX-License-Identifier: MIT
#import "examples/lighttable/ThumbnailView.h"

#import "examples/lighttable/Look.h"
#import "examples/lighttable/ThumbnailImage.h"

#include <algorithm>
#include <cmath>

using namespace lighttable;

namespace {

NSRect rect(const ThumbnailGrid::Rectangle& from) {
    return NSMakeRect(from.x, from.y, from.width, from.height);
}

/// The paper on which a picture and its name lie.
NSRect cardAround(NSRect cell) {
    return NSInsetRect(cell, -8, -8);
}

/// A line and what it means, where there are no thumbnails.
struct Message {
    NSString* title;
    NSString* text;
};

Message messageFor(const FolderContent& content) {
    switch (content.state) {
    case FolderState::Listing:
        return {@"", @""};
    case FolderState::Missing:
        return {@"This folder is not there", @"When it comes back, its pictures appear here."};
    case FolderState::Unreadable:
        return {@"This folder cannot be read",
                @"You may not look into it, or its disk has errors."};
    case FolderState::Listed:
        break;
    }
    return {@"No pictures in this folder",
            @"Choose another one at the left, or import some from a camera."};
}

}  // namespace

@implementation ThumbnailView

- (id)initWithFrame:(NSRect)frame loader:(ThumbnailLoader*)loader side:(int)side {
    self = [super initWithFrame:frame];
    if (self != nil) {
        _loader = loader;
        _side = side;
        _cutNames = [[NSMutableDictionary alloc] init];
    }
    return self;
}

- (void)dealloc {
    [_cutNames release];
    [super dealloc];
}

/// As high as all thumbnails, and at least as high as what is seen of it.
- (void)layout {
    NSView* const around = [self superview];
    const CGFloat width = around == nil ? NSWidth([self frame]) : NSWidth([around bounds]);
    const CGFloat room = around == nil ? NSHeight([self frame]) : NSHeight([around bounds]);
    _grid = ThumbnailGrid(width, _side, _content.pictures.size());
    const NSSize size = NSMakeSize(width, std::max(room, std::ceil(_grid.height())));
    if (!NSEqualSizes(size, [self frame].size))
        [self setFrameSize:size];
    [self setNeedsDisplay:YES];
}

- (void)resizeWithOldSuperviewSize:(NSSize)oldSize {
    (void)oldSize;
    [self layout];
}

- (void)showContent:(const FolderContent&)content {
    const bool isOther = content.folder != _content.folder;
    _content = content;
    if ([self selectedPicture] == nullptr)
        _selectedPath.clear();
    [_cutNames removeAllObjects];
    [self layout];
    if (isOther)
        [self scrollPoint:NSZeroPoint];
    [self wantVisible];
}

- (void)setSide:(int)side {
    _side = side;
    [_cutNames removeAllObjects];
    [self layout];
}

- (void)setSelectionChanged:(std::function<void()>)function {
    _selectionChanged = std::move(function);
}

- (std::size_t)indexOfPath:(const std::string&)path {
    const auto& pictures = _content.pictures;
    const auto found = std::find_if(pictures.begin(), pictures.end(),
                                    [&](const auto& picture) { return picture.path == path; });
    return static_cast<std::size_t>(found - pictures.begin());
}

- (void)thumbnailLoaded:(const std::string&)path {
    const std::size_t index = [self indexOfPath:path];
    if (index < _content.pictures.size())
        [self setNeedsDisplayInRect:cardAround(rect(_grid.cell(index)))];
}

- (const PictureFile*)selectedPicture {
    const std::size_t index = [self indexOfPath:_selectedPath];
    return index < _content.pictures.size() ? &_content.pictures[index] : nullptr;
}

- (NSRect)frameOfPicture:(std::size_t)index {
    return rect(_grid.picture(index));
}

- (void)wantVisible {
    const NSRect visible = [self visibleRect];
    const auto range = _grid.between(NSMinY(visible), NSMaxY(visible));
    std::vector<PictureFile> wanted;
    for (std::size_t i = range.begin; i < range.end; ++i)
        if (_loader->find(_content.pictures[i]) == nullptr)
            wanted.push_back(_content.pictures[i]);
    _loader->want(wanted);
}

- (void)drawNameOf:(const PictureFile&)picture in:(NSRect)place {
    NSFont* const font = look::font(11);
    NSString* const name = look::string(picture.name);
    NSString* cut = [_cutNames objectForKey:name];
    if (cut == nil) {
        cut = look::fitted(name, font, NSWidth(place) - 8);
        [_cutNames setObject:cut forKey:name];
    }
    look::drawText(cut, place, font, look::text(), look::Alignment::Centre);
}

- (void)drawPicture:(std::size_t)index {
    const PictureFile& picture = _content.pictures[index];
    const BOOL isSelected = picture.path == _selectedPath;
    const NSRect square = rect(_grid.picture(index));
    const NSRect name = NSMakeRect(NSMinX(square), NSMaxY(square) + 6, NSWidth(square),
                                   ThumbnailGrid::kNameHeight - 6);
    const NSRect card = cardAround(rect(_grid.cell(index)));
    look::fillRounded(NSInsetRect(card, 0.5, 0.5), 6,
                      isSelected ? look::selection() : [NSColor whiteColor]);
    look::strokeRounded(card, 6, isSelected ? look::accent() : look::line());
    drawThumbnail(_loader->find(picture), square);
    [self drawNameOf:picture in:name];
}

- (void)drawMessage {
    const Message message = messageFor(_content);
    const NSRect visible = [self visibleRect];
    NSRect place =
        NSMakeRect(NSMinX(visible) + 20, NSMidY(visible) - 24, NSWidth(visible) - 40, 24);
    look::drawText(message.title, place, look::boldFont(15), look::quietText(),
                   look::Alignment::Centre);
    place.origin.y += 26;
    look::drawText(message.text, place, look::font(12), look::quietText(), look::Alignment::Centre);
}

- (void)drawRect:(NSRect)dirty {
    look::fill(dirty, look::canvas());
    if (_content.pictures.empty())
        return [self drawMessage];
    const auto range = _grid.between(NSMinY(dirty), NSMaxY(dirty));
    for (std::size_t i = range.begin; i < range.end; ++i)
        [self drawPicture:i];
    [self wantVisible];
}

- (void)select:(std::size_t)index {
    const auto& pictures = _content.pictures;
    _selectedPath = index < pictures.size() ? pictures[index].path : std::string();
    if (index < pictures.size())
        [self
            scrollRectToVisible:NSInsetRect(rect(_grid.cell(index)), 0, -ThumbnailGrid::kGap / 2)];
    [self setNeedsDisplay:YES];
    if (_selectionChanged)
        _selectionChanged();
}

- (void)open {
    if (const PictureFile* const picture = [self selectedPicture])
        [[NSWorkspace sharedWorkspace] openFile:look::string(picture->path)];
}

- (void)mouseDown:(NSEvent*)event {
    const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    [[self window] makeFirstResponder:self];
    [self select:_grid.indexAt(point.x, point.y)];
    if ([event clickCount] == 2)
        [self open];
}

- (void)move:(std::ptrdiff_t)step {
    if (_content.pictures.empty())
        return;
    const auto last = static_cast<std::ptrdiff_t>(_content.pictures.size()) - 1;
    const BOOL isNone = [self selectedPicture] == nullptr;
    const auto now = static_cast<std::ptrdiff_t>([self indexOfPath:_selectedPath]);
    [self select:static_cast<std::size_t>(
                     isNone ? 0 : std::clamp<std::ptrdiff_t>(now + step, 0, last))];
}

- (void)keyDown:(NSEvent*)event {
    NSString* const keys = [event characters];
    const unichar key = [keys length] == 0 ? 0 : [keys characterAtIndex:0];
    const auto columns = static_cast<std::ptrdiff_t>(_grid.columns);
    switch (key) {
    case NSLeftArrowFunctionKey:
        return [self move:-1];
    case NSRightArrowFunctionKey:
        return [self move:1];
    case NSUpArrowFunctionKey:
        return [self move:-columns];
    case NSDownArrowFunctionKey:
        return [self move:columns];
    case '\r':
        return [self open];
    default:
        [super keyDown:event];
    }
}

@end
