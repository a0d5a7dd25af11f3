// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/Check.h"

#include "tools/ula/Translation.h"

namespace tav::tool::doctor {

const char* textOf(CheckState state) {
    switch (state) {
    case CheckState::Ok:
        return translatable("ok");
    case CheckState::Warning:
        return translatable("warning");
    case CheckState::Problem:
        return translatable("problem");
    default:
        return translatable("unknown");
    }
}

}  // namespace tav::tool::doctor
