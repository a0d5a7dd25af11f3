// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace lighttable {

/// Where the thumbnails of a width of view lie: equal cells in rows, from the upper left, with the
/// room that is left spread between them.
/// Units: points of the screen; y counts downwards.
struct ThumbnailGrid {
    struct Rectangle {
        double x = 0, y = 0, width = 0, height = 0;
    };
    struct Range {
        std::size_t begin = 0, end = 0;
    };

    static constexpr double kMargin = 22;
    static constexpr double kGap = 28;
    static constexpr double kNameHeight = 26;

    ThumbnailGrid() = default;
    ThumbnailGrid(double viewWidth, double thumbnailSide, std::size_t pictureCount);

    double height() const;
    Rectangle cell(std::size_t index) const;
    /// The square above the name.
    Rectangle picture(std::size_t index) const;
    /// The count of pictures when there is none.
    std::size_t indexAt(double x, double y) const;
    /// Those in a part of the height.
    Range between(double top, double bottom) const;

    double side = 0;
    std::size_t count = 0;
    std::size_t columns = 1;

private:
    double rowHeight() const { return side + kNameHeight + kGap; }

    double _step = 1;  ///< from one column to the next
};

}  // namespace lighttable
