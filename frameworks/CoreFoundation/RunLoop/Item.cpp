// SPDX-License-Identifier: MIT
#include "Item.h"

#include "RunLoop.h"

namespace cf {

Item::Item() = default;

Item::~Item() = default;

}  // namespace cf
