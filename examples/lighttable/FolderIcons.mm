// SPDX-License-Identifier: MIT
#import "examples/lighttable/FolderIcons.h"

#import "examples/lighttable/Look.h"

namespace lighttable {

namespace {

NSColor* blue(CGFloat level) {
    return [NSColor colorWithCalibratedRed:0.36 * level
                                     green:0.58 * level
                                      blue:0.9 * level
                                     alpha:1];
}

void drawFolder(NSRect place) {
    const CGFloat x = NSMinX(place), y = NSMinY(place), side = NSWidth(place);
    look::fillRounded(NSMakeRect(x, y + side * 0.12, side * 0.5, side * 0.4), 1.5, blue(0.85));
    look::fillRounded(NSMakeRect(x, y + side * 0.25, side, side * 0.62), 2, blue(1));
}

/// The bytes are borrowed for the drawing.
void drawBitmap(const tav::ula::FileIconBitmap& bitmap, NSRect place) {
    unsigned char* planes[5] = {bitmap.data.get()};
    NSBitmapImageRep* const pixels =
        [[[NSBitmapImageRep alloc] initWithBitmapDataPlanes:planes
                                                 pixelsWide:bitmap.width
                                                 pixelsHigh:bitmap.height
                                              bitsPerSample:8
                                            samplesPerPixel:4
                                                   hasAlpha:YES
                                                   isPlanar:NO
                                             colorSpaceName:NSCalibratedRGBColorSpace
                                                bytesPerRow:bitmap.bytesPerRow
                                               bitsPerPixel:32] autorelease];
    look::drawPixels(pixels, place);
}

}  // namespace

void drawFolderIcon(const FolderNode& node, NSRect place) {
    if (node.icon && node.icon->data && node.icon->bitsPerPixel == 32)
        drawBitmap(*node.icon, place);
    else
        drawFolder(place);
}

}  // namespace lighttable
