// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"
#include "ula/foundation/util/Signal.h"

#include <vector>

namespace tav::ula {

/// The settings of one application of one company, with a signal for every change and a file
/// behind them that the backend (`SettingsXML`, `SettingsPList`) reads and writes.
/// Thread: one at a time.
class ULA_API Settings : public SettingsBase {
public:
    /// An empty name is logged as an assertion and kept.
    Settings(const FastString& appName, const FastString& company);
    ~Settings() override;

    /// Stores, then emits `changed()` once, whether or not the value is a new one. The getters
    /// store their defaults through it.
    void setGeneric(const FastString& groupName, const FastString& key,
                    const Setting& setting) override;

    /// Each moves the whole store. Fails: false.
    virtual bool read() = 0;
    virtual bool write() = 0;

    std::vector<FastString> allGroups() const;
    /// Empty when there is no such group.
    std::vector<FastString> allValuesNamesOfGroup(const FastString& groupName) const;

    /// Emitted after every store through `setGeneric`, in the thread that stores; `read` does not
    /// emit it. Slots must not destroy the settings.
    util::Signal0& changed() { return _changed; }

protected:
    util::Signal0 _changed;
    FastString _appName;
    FastString _company;
};

}  // namespace tav::ula
