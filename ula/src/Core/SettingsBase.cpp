// SPDX-License-Identifier: MIT
#include "ula/SettingsBase.h"

#include <bit>

namespace tav::ula {

namespace {

void checkNames(const FastString& groupName, const FastString& key, int line) {
    if (groupName.empty() || key.empty())
        debug::assertionFailed("src/Core/SettingsBase", line, "!groupName.empty() && !key.empty()");
}

}  // namespace

bool operator==(const SettingsBase::Setting& left, const SettingsBase::Setting& right) {
    if (left._type != right._type)
        return false;
    switch (left._type) {
    case SETTINGSTYPE_INT:
        return left._intValue == right._intValue;
    case SETTINGSTYPE_BOOL:
        return left._boolValue == right._boolValue;
    case SETTINGSTYPE_DOUBLE:
        return std::bit_cast<std::uint64_t>(left._doubleValue) ==
               std::bit_cast<std::uint64_t>(right._doubleValue);
    case SETTINGSTYPE_STRING:
        return left._stringValue == right._stringValue;
    case SETTINGSTYPE_STRING_ARRAY:
        return left._stringArrayValue == right._stringArrayValue;
    case SETTINGSTYPE_INVALID:
        break;
    }
    return true;
}

SettingsBase::SettingsBase() = default;

SettingsBase::~SettingsBase() = default;

void SettingsBase::setGeneric(const FastString& groupName, const FastString& key,
                              const Setting& setting) {
    checkNames(groupName, key, 15);
    _settings[groupName].insert_or_assign(key, setting);
}

const SettingsBase::Setting* SettingsBase::findOfType(const FastString& groupName,
                                                      const FastString& key,
                                                      SettingsType type) const {
    checkNames(groupName, key, 51);
    const auto group = _settings.find(groupName);
    if (group == _settings.end())
        return nullptr;
    const auto entry = group->second.find(key);
    if (entry == group->second.end() || entry->second.type() != type)
        return nullptr;
    return &entry->second;
}

template <class Value>
SettingsBase::Setting SettingsBase::storeDefault(const FastString& groupName, const FastString& key,
                                                 const Value& defaultValue) {
    Setting setting(defaultValue);
    setGeneric(groupName, key, setting);
    return setting;
}

int SettingsBase::getInt(const FastString& groupName, const FastString& key, int defaultValue) {
    if (const Setting* stored = findOfType(groupName, key, SETTINGSTYPE_INT))
        return stored->asInt();
    return storeDefault(groupName, key, defaultValue).asInt();
}

bool SettingsBase::getBool(const FastString& groupName, const FastString& key, bool defaultValue) {
    if (const Setting* stored = findOfType(groupName, key, SETTINGSTYPE_BOOL))
        return stored->asBool();
    return storeDefault(groupName, key, defaultValue).asBool();
}

double SettingsBase::getDouble(const FastString& groupName, const FastString& key,
                               double defaultValue) {
    if (const Setting* stored = findOfType(groupName, key, SETTINGSTYPE_DOUBLE))
        return stored->asDouble();
    return storeDefault(groupName, key, defaultValue).asDouble();
}

FastString SettingsBase::getString(const FastString& groupName, const FastString& key,
                                   const FastString& defaultValue) {
    if (const Setting* stored = findOfType(groupName, key, SETTINGSTYPE_STRING))
        return stored->asString();
    return storeDefault(groupName, key, defaultValue).asString();
}

std::vector<FastString> SettingsBase::getStringArray(const FastString& groupName,
                                                     const FastString& key,
                                                     const std::vector<FastString>& defaultValue) {
    if (const Setting* stored = findOfType(groupName, key, SETTINGSTYPE_STRING_ARRAY))
        return stored->asStringArray();
    return storeDefault(groupName, key, defaultValue).asStringArray();
}

const SettingsBase::Setting& SettingsBase::get(const FastString& groupName, const FastString& key,
                                               const Setting& defaultSetting) {
    if (const Setting* stored = findOfType(groupName, key, defaultSetting.type()))
        return *stored;
    setGeneric(groupName, key, defaultSetting);
    return defaultSetting;
}

bool SettingsBase::containsValue(const FastString& groupName, const FastString& key) const {
    const auto group = _settings.find(groupName);
    return group != _settings.end() && group->second.contains(key);
}

}  // namespace tav::ula
