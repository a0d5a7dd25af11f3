// SPDX-License-Identifier: MIT
#include "examples/lighttable/ThumbnailGrid.h"

#include <algorithm>
#include <cmath>

namespace lighttable {

ThumbnailGrid::ThumbnailGrid(double viewWidth, double thumbnailSide, std::size_t pictureCount)
    : side(thumbnailSide), count(pictureCount) {
    const double room = std::max(viewWidth - 2 * kMargin, side);
    columns = std::max<std::size_t>(1, static_cast<std::size_t>((room + kGap) / (side + kGap)));
    const double fixed = static_cast<double>(columns) * side;
    _step = columns < 2 ? room : side + (room - fixed) / static_cast<double>(columns - 1);
    _step = std::floor(std::min(_step, side + 3 * kGap));
}

double ThumbnailGrid::height() const {
    const std::size_t rows = (count + columns - 1) / columns;
    return 2 * kMargin + static_cast<double>(rows) * rowHeight() - (rows > 0 ? kGap : 0);
}

ThumbnailGrid::Rectangle ThumbnailGrid::cell(std::size_t index) const {
    return {kMargin + static_cast<double>(index % columns) * _step,
            kMargin + static_cast<double>(index / columns) * rowHeight(), side, side + kNameHeight};
}

ThumbnailGrid::Rectangle ThumbnailGrid::picture(std::size_t index) const {
    Rectangle square = cell(index);
    square.height = side;
    return square;
}

std::size_t ThumbnailGrid::indexAt(double x, double y) const {
    if (x < kMargin || y < kMargin)
        return count;
    const auto column = static_cast<std::size_t>((x - kMargin) / _step);
    const auto index = static_cast<std::size_t>((y - kMargin) / rowHeight()) * columns + column;
    if (column >= columns || index >= count)
        return count;
    const Rectangle found = cell(index);
    return x < found.x + found.width && y < found.y + found.height ? index : count;
}

ThumbnailGrid::Range ThumbnailGrid::between(double top, double bottom) const {
    const auto rowAt = [this](double y) {
        return static_cast<std::size_t>(std::max(0.0, (y - kMargin) / rowHeight()));
    };
    return {std::min(rowAt(top) * columns, count), std::min((rowAt(bottom) + 1) * columns, count)};
}

}  // namespace lighttable
