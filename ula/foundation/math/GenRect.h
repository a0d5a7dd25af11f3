// SPDX-License-Identifier: MIT
#pragma once

namespace tav::math {

/// A rectangle by its four edges: left, top, right, bottom.
template <class Number>
struct GenRect {
    Number left{};
    Number top{};
    Number right{};
    Number bottom{};

    Number width() const { return right - left; }
    Number height() const { return bottom - top; }

    friend bool operator==(const GenRect&, const GenRect&) = default;
};

}  // namespace tav::math
