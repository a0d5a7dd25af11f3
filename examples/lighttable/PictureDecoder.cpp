// SPDX-License-Identifier: MIT
#include "examples/lighttable/PictureDecoder.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <memory>

namespace lighttable {

namespace {

/// A few bytes can claim to be more than the memory holds.
constexpr std::int64_t kMostPixels = 300'000'000;

struct Unreference {
    void operator()(GdkPixbuf* picture) const { g_object_unref(picture); }
};
using Picture = std::unique_ptr<GdkPixbuf, Unreference>;

/// No larger than it is; null where it cannot be read.
Picture read(const std::string& path, int side) {
    int width = 0, height = 0;
    if (gdk_pixbuf_get_file_info(path.c_str(), &width, &height) == nullptr || width <= 0 ||
        height <= 0 || std::int64_t{width} * height > kMostPixels)
        return nullptr;
    const int longer = std::min(side, std::max(width, height));
    return Picture(gdk_pixbuf_new_from_file_at_scale(path.c_str(), longer, longer, TRUE, nullptr));
}

std::uint8_t overWhite(int level, int alpha) {
    return static_cast<std::uint8_t>((level * alpha + 255 * (255 - alpha)) / 255);
}

Thumbnail pixelsOf(const GdkPixbuf* picture) {
    Thumbnail thumbnail;
    thumbnail.width = gdk_pixbuf_get_width(picture);
    thumbnail.height = gdk_pixbuf_get_height(picture);
    const int samples = gdk_pixbuf_get_n_channels(picture);
    const bool hasAlpha = gdk_pixbuf_get_has_alpha(picture) != FALSE;
    for (int y = 0; y < thumbnail.height; ++y) {
        const guint8* pixel = gdk_pixbuf_read_pixels(picture) +
                              static_cast<std::ptrdiff_t>(y) * gdk_pixbuf_get_rowstride(picture);
        for (int x = 0; x < thumbnail.width; ++x, pixel += samples)
            for (int i = 0; i < 3; ++i)
                thumbnail.pixels.push_back(overWhite(pixel[i], hasAlpha ? pixel[3] : 255));
    }
    return thumbnail;
}

}  // namespace

Thumbnail decodePicture(const std::string& path, int side) {
    std::error_code error;
    // A pipe would never end.
    if (!std::filesystem::is_regular_file(path, error))
        return {};
    const Picture picture = read(path, side);
    if (!picture)
        return {};
    return pixelsOf(Picture(gdk_pixbuf_apply_embedded_orientation(picture.get())).get());
}

}  // namespace lighttable
