// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Module.h"

namespace tav::ula {

/// The platform's bundle. Thread: any.
class ULA_API ModuleMac : public Module {
public:
    /// Of an NSBundle, which is to live as long as this object; null for the main bundle.
    explicit ModuleMac(void* bundle);
    /// The first loaded bundle with that identifier, letter by letter. Fails: the main bundle,
    /// under the identifier that was asked for; not logged.
    explicit ModuleMac(const FastString& identifier);
    ~ModuleMac() override;

    FastString getPath() const override;
    /// The NSBundle. Owner: the process.
    void* getBundle() const;
    /// Empty when the bundle has none.
    FastString getID() const;

private:
    void* _bundle = nullptr;
    FastString _identifier;
};

}  // namespace tav::ula
