// SPDX-License-Identifier: MIT
#include "ula/BaseTypesConverter.h"

namespace tav::ula::BaseTypesConverter {

math::GenRect<float> toTavRect(CGRect rectangle) {
    const auto x = static_cast<float>(rectangle.origin.x);
    const auto y = static_cast<float>(rectangle.origin.y);
    return {x, y, x + static_cast<float>(rectangle.size.width),
            y + static_cast<float>(rectangle.size.height)};
}

CGRect fromTavRectf(const math::GenRect<float>& rectangle) {
    return CGRectMake(rectangle.left, rectangle.top, rectangle.width(), rectangle.height());
}

CGRect fromTavRecti(const math::GenRect<int>& rectangle) {
    return CGRectMake(rectangle.left, rectangle.top, rectangle.width(), rectangle.height());
}

}  // namespace tav::ula::BaseTypesConverter
