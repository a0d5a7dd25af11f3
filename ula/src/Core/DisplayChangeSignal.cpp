// SPDX-License-Identifier: MIT
#include "ula/Screen.h"

namespace tav::ula {

DisplayChangeSignal::DisplayChangeSignal() = default;

DisplayChangeSignal::~DisplayChangeSignal() = default;

}  // namespace tav::ula
