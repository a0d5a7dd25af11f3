// SPDX-License-Identifier: MIT
#include "ula/SettingsException.h"

namespace tav::ula {

SettingsException::~SettingsException() = default;

SettingsException* SettingsException::clone() const {
    return new SettingsException(*this);
}

}  // namespace tav::ula
