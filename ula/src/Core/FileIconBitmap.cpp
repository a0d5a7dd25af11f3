// SPDX-License-Identifier: MIT
#include "ula/FileProperties.h"

#include <algorithm>

namespace tav::ula {

namespace {

std::unique_ptr<unsigned char[]> copyPixels(const void* source, std::size_t size) {
    if (source == nullptr)
        return nullptr;
    // Null for what memory does not hold: an icon less, but no harm.
    std::unique_ptr<unsigned char[]> pixels(new (std::nothrow) unsigned char[size]);
    if (pixels != nullptr)
        std::copy_n(static_cast<const unsigned char*>(source), size, pixels.get());
    return pixels;
}

}  // namespace

FileIconBitmap::FileIconBitmap(std::uint32_t width_, std::uint32_t height_,
                               std::uint32_t bytesPerRow_, std::uint32_t bitsPerPixel_,
                               const void* source)
    : width(width_),
      height(height_),
      bytesPerRow(bytesPerRow_ != 0 ? bytesPerRow_ : width_),
      bitsPerPixel(bitsPerPixel_),
      data(copyPixels(source, size())) {
}

FileIconBitmap::FileIconBitmap(const FileIconBitmap& other)
    : FileIconBitmap(other.width, other.height, other.bytesPerRow, other.bitsPerPixel,
                     other.data.get()) {
}

FileIconBitmap& FileIconBitmap::operator=(const FileIconBitmap& other) {
    if (this == &other)
        return *this;
    // The old pixels go first: an icon may be large, and two need not be held.
    data.reset();
    width = other.width;
    height = other.height;
    bytesPerRow = other.bytesPerRow;
    bitsPerPixel = other.bitsPerPixel;
    data = copyPixels(other.data.get(), size());
    return *this;
}

FileIconBitmap::~FileIconBitmap() = default;

std::size_t FileIconBitmap::size() const {
    return std::size_t{bytesPerRow} * height;
}

}  // namespace tav::ula
