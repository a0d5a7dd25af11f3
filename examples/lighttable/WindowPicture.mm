// SPDX-License-Identifier: MIT
#import "examples/lighttable/WindowPicture.h"

#import "examples/lighttable/Look.h"

#include <algorithm>
#include <cmath>

namespace lighttable {

namespace {

NSBitmapImageRep* pixelsOf(NSWindow* window) {
    NSView* const view = [window contentView];
    [window display];
    [view lockFocus];
    NSBitmapImageRep* const pixels =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    [view unlockFocus];
    return pixels;
}

/// Red, green and blue of each pixel, from the upper left.
class Canvas {
public:
    explicit Canvas(NSBitmapImageRep* pixels) : _pixels(pixels), _bytes([pixels bitmapData]) {}

    NSInteger width() const { return [_pixels pixelsWide]; }
    NSInteger height() const { return [_pixels pixelsHigh]; }
    unsigned char* at(NSInteger x, NSInteger y) {
        return _bytes + y * [_pixels bytesPerRow] + x * [_pixels samplesPerPixel];
    }
    bool holds(NSInteger x, NSInteger y) const {
        return x >= 0 && y >= 0 && x < width() && y < height();
    }

private:
    NSBitmapImageRep* const _pixels;
    unsigned char* const _bytes;
};

/// How much of the light is left beside a panel.
double lightAt(double distance) {
    constexpr double kReach = 22, kDarkest = 0.2;
    return distance >= kReach ? 1 : 1 - kDarkest * std::pow(1 - distance / kReach, 2);
}

void drawShadow(Canvas& under, NSRect place) {
    for (NSInteger y = 0; y < under.height(); ++y)
        for (NSInteger x = 0; x < under.width(); ++x) {
            const double outX = std::max({NSMinX(place) - static_cast<double>(x), 0.0,
                                          static_cast<double>(x) - NSMaxX(place)});
            const double outY = std::max({NSMinY(place) + 3 - static_cast<double>(y), 0.0,
                                          static_cast<double>(y) - 3 - NSMaxY(place)});
            for (int i = 0; i < 3; ++i) {
                unsigned char& part = under.at(x, y)[i];
                part = static_cast<unsigned char>(part * lightAt(std::hypot(outX, outY)));
            }
        }
}

void drawOver(NSBitmapImageRep* window, NSBitmapImageRep* panel) {
    Canvas under(window), over(panel);
    const NSInteger left = (under.width() - over.width()) / 2;
    const NSInteger top = (under.height() - over.height()) / 3;
    drawShadow(under,
               NSMakeRect(static_cast<CGFloat>(left), static_cast<CGFloat>(top),
                          static_cast<CGFloat>(over.width()), static_cast<CGFloat>(over.height())));
    for (NSInteger y = 0; y < over.height(); ++y)
        for (NSInteger x = 0; x < over.width(); ++x) {
            if (!under.holds(left + x, top + y))
                continue;
            const bool isEdge = x == 0 || y == 0 || x == over.width() - 1 || y == over.height() - 1;
            for (int i = 0; i < 3; ++i)
                under.at(left + x, top + y)[i] = isEdge ? 0xb4 : over.at(x, y)[i];
        }
}

}  // namespace

bool saveWindowPicture(NSWindow* window, NSWindow* panel, const std::string& path) {
    NSBitmapImageRep* const pixels = pixelsOf(window);
    if (panel != nil)
        drawOver(pixels, pixelsOf(panel));
    NSData* const data = [pixels representationUsingType:NSPNGFileType
                                              properties:[NSDictionary dictionary]];
    return data != nil && [data writeToFile:look::string(path) atomically:YES];
}

}  // namespace lighttable
