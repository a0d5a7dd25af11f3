// SPDX-License-Identifier: MIT
#include "ula/Settings.h"

namespace tav::ula {

Settings::Settings(const FastString& appName, const FastString& company)
    : _appName(appName), _company(company) {
    if (_appName.empty() || _company.empty())
        debug::assertionFailed("src/Core/Settings", 12, "!_appName.empty() && !_company.empty()");
}

Settings::~Settings() = default;

void Settings::setGeneric(const FastString& groupName, const FastString& key,
                          const Setting& setting) {
    SettingsBase::setGeneric(groupName, key, setting);
    _changed.emit();
}

std::vector<FastString> Settings::allGroups() const {
    std::vector<FastString> names;
    names.reserve(_settings.size());
    for (const auto& [name, keys] : _settings)
        names.push_back(name);
    return names;
}

std::vector<FastString> Settings::allValuesNamesOfGroup(const FastString& groupName) const {
    std::vector<FastString> names;
    const auto group = _settings.find(groupName);
    if (group == _settings.end())
        return names;
    names.reserve(group->second.size());
    for (const auto& [name, setting] : group->second)
        names.push_back(name);
    return names;
}

}  // namespace tav::ula
