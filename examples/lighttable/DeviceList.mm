// SPDX-License-Identifier: MIT
#import "examples/lighttable/DeviceList.h"

#import "examples/lighttable/Look.h"

#include <algorithm>
#include <cmath>

using namespace lighttable;
using tav::ula::ImportDevice;

namespace {

constexpr CGFloat kRowHeight = 44;
constexpr CGFloat kInset = 6;

void drawCamera(NSRect place) {
    const CGFloat x = NSMinX(place), y = NSMinY(place);
    look::fillRounded(NSMakeRect(x + 8, y + 1, 9, 6), 2, look::quietText());
    look::fillRounded(NSMakeRect(x, y + 4, 26, 17), 3, look::quietText());
    look::fillRounded(NSMakeRect(x + 8, y + 7, 11, 11), 5.5, [NSColor whiteColor]);
    look::fillRounded(NSMakeRect(x + 10.5, y + 9.5, 6, 6), 3, look::quietText());
}

void drawCard(NSRect place) {
    const CGFloat x = NSMinX(place) + 4, y = NSMinY(place);
    look::fillRounded(NSMakeRect(x, y, 18, 22), 3, look::quietText());
    for (int i = 0; i < 3; ++i)
        look::fill(NSMakeRect(x + 3.5 + i * 4, y + 3, 2.5, 5), [NSColor whiteColor]);
}

}  // namespace

@implementation DeviceList

- (BOOL)isFlipped {
    return YES;
}

- (void)setTarget:(id)target action:(SEL)action {
    _target = target;
    _action = action;
}

- (void)showDevices:(const std::vector<ImportDevice>&)devices {
    const std::string before = _chosen < _devices.size() ? _devices[_chosen].id : "";
    _devices = devices;
    _isKnown = YES;
    const auto found = std::find_if(_devices.begin(), _devices.end(),
                                    [&](const auto& device) { return device.id == before; });
    _chosen = found == _devices.end() ? 0 : static_cast<std::size_t>(found - _devices.begin());
    [self setNeedsDisplay:YES];
}

- (const ImportDevice*)chosenDevice {
    const BOOL isUsable = _chosen < _devices.size() && _devices[_chosen].problem.empty();
    return isUsable ? &_devices[_chosen] : nullptr;
}

- (void)drawNothing {
    const NSRect bounds = [self bounds];
    if (!_isKnown)
        return;
    look::drawText(@"No camera or memory card is connected",
                   NSMakeRect(12, NSMidY(bounds) - 22, NSWidth(bounds) - 24, 20),
                   look::boldFont(12), look::quietText(), look::Alignment::Centre);
    look::drawText(@"Connect one and switch it on: it appears here.",
                   NSMakeRect(12, NSMidY(bounds) + 2, NSWidth(bounds) - 24, 18), look::font(11),
                   look::quietText(), look::Alignment::Centre);
}

- (void)drawDevice:(std::size_t)index {
    const ImportDevice& device = _devices[index];
    const NSRect row = NSMakeRect(kInset, kInset + static_cast<CGFloat>(index) * kRowHeight,
                                  NSWidth([self bounds]) - 2 * kInset, kRowHeight);
    if (index == _chosen)
        look::fillRounded(row, 5, look::selection());
    const NSRect icon = NSMakeRect(NSMinX(row) + 10, NSMidY(row) - 11, 26, 22);
    device.isCard ? drawCard(icon) : drawCamera(icon);
    const CGFloat left = NSMaxX(icon) + 12, width = NSMaxX(row) - left - 8;
    look::drawText(look::string(device.name), NSMakeRect(left, NSMinY(row) + 5, width, 18),
                   look::boldFont(12), look::text());
    const BOOL isWell = device.problem.empty();
    look::drawText(isWell ? (device.isCard ? @"Memory card" : @"Camera")
                          : look::string(device.problem),
                   NSMakeRect(left, NSMinY(row) + 23, width, 16), look::font(11),
                   isWell ? look::quietText() : look::warning());
}

- (void)drawRect:(NSRect)dirty {
    (void)dirty;
    const NSRect bounds = [self bounds];
    look::fillRounded(NSInsetRect(bounds, 0.5, 0.5), 6, [NSColor whiteColor]);
    look::strokeRounded(bounds, 6, look::outline());
    if (_devices.empty())
        return [self drawNothing];
    for (std::size_t i = 0; i < _devices.size(); ++i)
        [self drawDevice:i];
}

- (void)mouseDown:(NSEvent*)event {
    const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
    const CGFloat row = std::floor((point.y - kInset) / kRowHeight);
    if (row < 0 || row >= static_cast<CGFloat>(_devices.size()))
        return;
    _chosen = static_cast<std::size_t>(row);
    [self setNeedsDisplay:YES];
    [NSApp sendAction:_action to:_target from:self];
}

@end
