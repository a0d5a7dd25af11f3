// SPDX-License-Identifier: MIT
#include "ula/Module.h"

namespace tav::ula {

Module::~Module() = default;

}  // namespace tav::ula
