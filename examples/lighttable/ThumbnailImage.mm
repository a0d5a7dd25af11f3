// SPDX-License-Identifier: MIT
#import "examples/lighttable/ThumbnailImage.h"

#import "examples/lighttable/Look.h"

#include <algorithm>
#include <cmath>

namespace lighttable {

namespace {

NSRect fitInto(NSRect square, const Thumbnail& thumbnail) {
    const double factor =
        std::min({NSWidth(square) / thumbnail.width, NSHeight(square) / thumbnail.height, 1.0});
    const double width = std::max(1.0, std::round(thumbnail.width * factor));
    const double height = std::max(1.0, std::round(thumbnail.height * factor));
    return NSMakeRect(std::floor(NSMidX(square) - width / 2),
                      std::floor(NSMidY(square) - height / 2), width, height);
}

/// The pixels are borrowed for the drawing.
NSBitmapImageRep* pixelsOf(const Thumbnail& thumbnail) {
    unsigned char* planes[5] = {const_cast<unsigned char*>(thumbnail.pixels.data())};
    return [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:planes
                                                    pixelsWide:thumbnail.width
                                                    pixelsHigh:thumbnail.height
                                                 bitsPerSample:8
                                               samplesPerPixel:3
                                                      hasAlpha:NO
                                                      isPlanar:NO
                                                colorSpaceName:NSCalibratedRGBColorSpace
                                                   bytesPerRow:thumbnail.width * 3
                                                  bitsPerPixel:24] autorelease];
}

void drawCard(NSRect square, NSString* text) {
    const NSRect card = NSInsetRect(square, 2, NSHeight(square) / 8);
    look::fillRounded(card, 4, look::sidebar());
    if (text != nil)
        look::drawText(text, NSInsetRect(card, 6, 6), look::font(11), look::quietText(),
                       look::Alignment::Centre);
}

/// Three soft edges, the lower ones a little longer: paper on a table.
void drawShadow(NSRect place) {
    for (int i = 3; i > 0; --i) {
        [[NSColor colorWithCalibratedWhite:0 alpha:0.05] set];
        [[NSBezierPath bezierPathWithRoundedRect:NSOffsetRect(NSInsetRect(place, -i, -i), 0, 1)
                                         xRadius:i
                                         yRadius:i] fill];
    }
}

}  // namespace

void drawThumbnail(const Thumbnail* thumbnail, NSRect square) {
    if (thumbnail == nullptr || thumbnail->isEmpty())
        return drawCard(square, thumbnail == nullptr ? nil : @"Cannot be read");
    const NSRect place = fitInto(NSInsetRect(square, 3, 3), *thumbnail);
    drawShadow(place);
    look::drawPixels(pixelsOf(*thumbnail), place);
}

}  // namespace lighttable
