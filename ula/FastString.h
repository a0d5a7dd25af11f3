// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"

namespace tav::ula {

using FastString = text::FastString<char>;

}  // namespace tav::ula
