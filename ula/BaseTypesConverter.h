// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/foundation/math/GenRect.h"

#include <CoreFoundation/CoreFoundation.h>

/// Rectangles by their edges and the platform's by origin and size. The y axis is not flipped: a
/// rectangle's top is the platform's origin y.
/// Thread: any.
namespace tav::ula::BaseTypesConverter {

/// Each number is narrowed to float before it is added.
ULA_API math::GenRect<float> toTavRect(CGRect rectangle);
/// The differences are computed in float.
ULA_API CGRect fromTavRectf(const math::GenRect<float>& rectangle);
/// The differences are computed in int.
ULA_API CGRect fromTavRecti(const math::GenRect<int>& rectangle);

}  // namespace tav::ula::BaseTypesConverter
