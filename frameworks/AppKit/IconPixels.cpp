// SPDX-License-Identifier: MIT
#include "AppKit/IconPixels.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <memory>

namespace appkit {

namespace {

struct Release {
    void operator()(GdkPixbuf* image) const { g_object_unref(image); }
};
using Image = std::unique_ptr<GdkPixbuf, Release>;

unsigned char multiplied(unsigned char colour, unsigned char opacity) {
    return static_cast<unsigned char>((colour * opacity + 127) / 255);
}

void appendRow(std::vector<unsigned char>& bytes, const unsigned char* row, int width) {
    for (int x = 0; x < width; ++x, row += 4) {
        for (int channel = 0; channel < 3; ++channel)
            bytes.push_back(multiplied(row[channel], row[3]));
        bytes.push_back(row[3]);
    }
}

}  // namespace

std::optional<IconPixels> drawIcon(const std::string& file, int pixels) {
    Image read(gdk_pixbuf_new_from_file_at_size(file.c_str(), pixels, pixels, nullptr));
    if (!read)
        return std::nullopt;
    // All kinds in one form: with opacity, four bytes each.
    Image image(gdk_pixbuf_add_alpha(read.get(), FALSE, 0, 0, 0));
    if (!image)
        return std::nullopt;
    IconPixels icon;
    icon.width = gdk_pixbuf_get_width(image.get());
    icon.height = gdk_pixbuf_get_height(image.get());
    const unsigned char* row = gdk_pixbuf_read_pixels(image.get());
    for (int y = 0; y < icon.height; ++y, row += gdk_pixbuf_get_rowstride(image.get()))
        appendRow(icon.bytes, row, icon.width);
    return icon;
}

}  // namespace appkit
