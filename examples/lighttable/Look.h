// SPDX-License-Identifier: MIT
// Colours, fonts and the drawing of texts: one place for how the application looks.
#pragma once

#import <AppKit/AppKit.h>

#include <string>

namespace lighttable::look {

NSColor* canvas();  ///< behind thumbnails
NSColor* sidebar();
NSColor* bar();      ///< the bars above and below
NSColor* line();     ///< between areas
NSColor* outline();  ///< around fields and buttons
NSColor* text();
NSColor* quietText();
NSColor* accent();
NSColor* selection();  ///< behind what is chosen
NSColor* warning();

NSFont* font(CGFloat size);
NSFont* boldFont(CGFloat size);

enum class Alignment { Left, Centre };

/// In the middle of the rectangle's height, cut with an ellipsis where it is too long.
void drawText(NSString* text, NSRect place, NSFont* font, NSColor* colour,
              Alignment alignment = Alignment::Left);
/// Cut in its middle, so that a file's ending stays.
NSString* fitted(NSString* text, NSFont* font, CGFloat width);

void fill(NSRect rectangle, NSColor* colour);
void fillRounded(NSRect rectangle, CGFloat radius, NSColor* colour);
void strokeRounded(NSRect rectangle, CGFloat radius, NSColor* colour);

void drawPixels(NSBitmapImageRep* pixels, NSRect place);

NSString* string(const std::string& text);
/// A line of text without a frame, to be put into a window.
NSTextField* makeLabel(NSRect frame, NSFont* font, NSColor* colour);

}  // namespace lighttable::look
