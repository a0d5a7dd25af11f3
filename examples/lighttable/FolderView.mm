// SPDX-License-Identifier: MIT
#import "examples/lighttable/FolderView.h"

#import "examples/lighttable/FolderIcons.h"
#import "examples/lighttable/Look.h"

#include <algorithm>
#include <cmath>

using namespace lighttable;

namespace {

constexpr CGFloat kRowHeight = 26;
constexpr CGFloat kMargin = 10;
constexpr CGFloat kIndentation = 14;
constexpr CGFloat kTriangleWidth = 16;
constexpr CGFloat kIconSide = 16;
constexpr std::ptrdiff_t kNone = -1;

CGFloat triangleAt(const FolderNode& node) {
    return kMargin + node.depth * kIndentation;
}

void drawTriangle(NSRect place, BOOL isOpen) {
    const NSPoint middle = NSMakePoint(NSMinX(place) + 7, NSMidY(place));
    const CGFloat x = isOpen ? 4 : 2.5, y = isOpen ? 2.5 : 4;
    NSBezierPath* const path = [NSBezierPath bezierPath];
    [path moveToPoint:NSMakePoint(middle.x - x, middle.y - y)];
    [path lineToPoint:isOpen ? NSMakePoint(middle.x, middle.y + y)
                             : NSMakePoint(middle.x + x, middle.y)];
    [path lineToPoint:isOpen ? NSMakePoint(middle.x + x, middle.y - y)
                             : NSMakePoint(middle.x - x, middle.y + y)];
    [path setLineWidth:1.6];
    [look::quietText() set];
    [path stroke];
}

}  // namespace

@implementation FolderView

- (void)setTree:(FolderTree*)tree {
    _tree = tree;
    [self treeChanged];
}

- (void)setSelected:(std::function<void(const std::string&)>)function {
    _selected = std::move(function);
}

- (std::size_t)rowCount {
    return _tree == nullptr ? 0 : _tree->rows().size();
}

- (NSRect)frameOfRow:(std::size_t)row {
    return NSMakeRect(0, kMargin + static_cast<CGFloat>(row) * kRowHeight, NSWidth([self bounds]),
                      kRowHeight);
}

- (void)treeChanged {
    NSView* const around = [self superview];
    const CGFloat rows = 2 * kMargin + static_cast<CGFloat>([self rowCount]) * kRowHeight;
    const NSSize size = around == nil ? NSMakeSize(NSWidth([self frame]), rows)
                                      : NSMakeSize(NSWidth([around bounds]),
                                                   std::max(rows, NSHeight([around bounds])));
    if (!NSEqualSizes(size, [self frame].size))
        [self setFrameSize:size];
    [self setNeedsDisplay:YES];
    const std::ptrdiff_t row = _isToBeSeen ? [self selectedRow] : kNone;
    if (row == kNone)
        return;
    _isToBeSeen = NO;
    [self scrollRectToVisible:[self frameOfRow:static_cast<std::size_t>(row)]];
}

- (void)resizeWithOldSuperviewSize:(NSSize)oldSize {
    (void)oldSize;
    [self treeChanged];
}

- (void)showFolder:(const std::string&)path {
    if (path == _selectedPath)
        return;
    _selectedPath = path;
    _selectedId = 0;
    _isToBeSeen = YES;
    [self treeChanged];
}

/// The line that the user chose; of a folder that came from elsewhere the first one.
- (std::ptrdiff_t)selectedRow {
    std::ptrdiff_t found = kNone;
    for (std::size_t i = 0; i < [self rowCount]; ++i) {
        const FolderNode& node = *_tree->rows()[i];
        if (node.id == _selectedId && _selectedId != 0)
            return static_cast<std::ptrdiff_t>(i);
        if (found == kNone && !node.path.empty() && node.path == _selectedPath)
            found = static_cast<std::ptrdiff_t>(i);
    }
    return found;
}

- (void)drawNode:(const FolderNode&)node in:(NSRect)row isSelected:(BOOL)isSelected {
    if (node.kind == FolderKind::Heading) {
        const NSRect place =
            NSMakeRect(kMargin + 4, NSMinY(row) + 4, NSWidth(row) - 2 * kMargin, NSHeight(row) - 4);
        return look::drawText(look::string(node.title), place, look::boldFont(10),
                              look::quietText());
    }
    if (isSelected)
        look::fillRounded(NSInsetRect(row, 6, 1), 5, look::selection());
    CGFloat x = triangleAt(node);
    if (node.isExpandable)
        drawTriangle(NSMakeRect(x, NSMinY(row), kTriangleWidth, kRowHeight), node.isExpanded);
    x += kTriangleWidth;
    drawFolderIcon(node, NSMakeRect(x, NSMidY(row) - kIconSide / 2, kIconSide, kIconSide));
    x += kIconSide + 7;
    const NSRect place = NSMakeRect(x, NSMinY(row), NSMaxX(row) - x - kMargin, kRowHeight);
    look::drawText(look::string(node.title), place, look::font(12), look::text());
}

- (void)drawRect:(NSRect)dirty {
    look::fill(dirty, look::sidebar());
    const std::ptrdiff_t selected = [self selectedRow];
    for (std::size_t i = 0; i < [self rowCount]; ++i) {
        const NSRect row = [self frameOfRow:i];
        if (NSIntersectsRect(row, dirty))
            [self drawNode:*_tree->rows()[i]
                        in:row
                isSelected:static_cast<std::ptrdiff_t>(i) == selected];
    }
}

- (void)choose:(std::ptrdiff_t)row {
    const FolderNode& node = *_tree->rows()[static_cast<std::size_t>(row)];
    _selectedId = node.id;
    _selectedPath = node.path;
    [self scrollRectToVisible:[self frameOfRow:static_cast<std::size_t>(row)]];
    [self setNeedsDisplay:YES];
    if (_selected)
        _selected(std::string(node.path));
}

- (void)toggle:(FolderNode&)node {
    if (node.isExpanded)
        _tree->collapse(node);
    else
        _tree->expand(node);
}

- (void)mouseDown:(NSEvent*)event {
    const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    [[self window] makeFirstResponder:self];
    const CGFloat number = std::floor((point.y - kMargin) / kRowHeight);
    if (number < 0 || number >= static_cast<CGFloat>([self rowCount]))
        return;
    FolderNode& node = *_tree->rows()[static_cast<std::size_t>(number)];
    if (node.kind == FolderKind::Heading)
        return;
    const BOOL isOnTriangle = point.x < triangleAt(node) + kTriangleWidth;
    if (node.isExpandable && (isOnTriangle || [event clickCount] == 2))
        [self toggle:node];
    else
        [self choose:static_cast<std::ptrdiff_t>(number)];
}

/// Headings are passed over.
- (void)move:(std::ptrdiff_t)step {
    const auto count = static_cast<std::ptrdiff_t>([self rowCount]);
    std::ptrdiff_t row = [self selectedRow];
    do
        row += step;
    while (row >= 0 && row < count &&
           _tree->rows()[static_cast<std::size_t>(row)]->kind == FolderKind::Heading);
    if (row >= 0 && row < count)
        [self choose:row];
}

- (void)keyDown:(NSEvent*)event {
    NSString* const keys = [event characters];
    const unichar key = [keys length] == 0 ? 0 : [keys characterAtIndex:0];
    const std::ptrdiff_t row = [self selectedRow];
    if (key == NSUpArrowFunctionKey && row != kNone)
        [self move:-1];
    else if (key == NSDownArrowFunctionKey)
        [self move:1];
    else if (key == NSRightArrowFunctionKey && row != kNone)
        _tree->expand(*_tree->rows()[static_cast<std::size_t>(row)]);
    else if (key == NSLeftArrowFunctionKey && row != kNone)
        _tree->collapse(*_tree->rows()[static_cast<std::size_t>(row)]);
    else
        [super keyDown:event];
}

@end
