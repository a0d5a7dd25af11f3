// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/foundation/Exception.h"

namespace tav::ula {

/// Thrown by the reader of a settings file whose elements are not those of a settings file.
class ULA_API SettingsException : public CloneableException<SettingsException> {
public:
    using CloneableException::CloneableException;
    ~SettingsException() override;

    SettingsException* clone() const override;
};

}  // namespace tav::ula
