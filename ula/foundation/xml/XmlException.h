// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Exception.h"

namespace tav::xml {

/// Thrown where a document cannot be written.
class TAV_FOUNDATION_API XmlException : public CloneableException<XmlException> {
public:
    using CloneableException::CloneableException;
    ~XmlException() override;
};

}  // namespace tav::xml
