// SPDX-License-Identifier: MIT
#include "ula/src/Mac/SettingsPListReader.h"

#import "ula/ObjCHelper.h"

#include <cstring>

namespace tav::ula {

namespace {

using Setting = SettingsBase::Setting;

constexpr const char* kSource = "src/Mac/SettingsPList";

bool isOfType(NSNumber* number, const char* encoding) {
    return std::strcmp([number objCType], encoding) == 0;
}

/// Of no type: a number that is none of the store's.
Setting settingOf(NSNumber* number) {
    if (isOfType(number, "q") || isOfType(number, "i"))
        return Setting(static_cast<int>([number intValue]));
    if (isOfType(number, "d"))
        return Setting([number doubleValue]);
    // Which character a truth value has depends on the runtime.
    if (isOfType(number, "c") || isOfType(number, @encode(BOOL)))
        return Setting(static_cast<bool>([number boolValue]));
    debug::assertionFailed(kSource, 125, "false");
    return {};
}

bool holdsTextsOnly(NSArray* array) {
    for (id member in array)
        if (![member isKindOfClass:[NSString class]])
            return false;
    return true;
}

/// False for what is no setting.
bool readSetting(const FastString& key, id object, SettingsBase::KeyMap& keys) {
    Setting setting;
    if ([object isKindOfClass:[NSString class]])
        setting = Setting([object toUTF8String]);
    else if ([object isKindOfClass:[NSArray class]] && holdsTextsOnly(object))
        setting = Setting([object toUtf8StringArray]);
    else if ([object isKindOfClass:[NSNumber class]])
        setting = settingOf(object);
    else
        return false;
    if (setting.type() != SETTINGSTYPE_INVALID)
        keys.insert_or_assign(key, std::move(setting));
    return true;
}

bool readGroup(NSDictionary* group, SettingsBase::KeyMap& keys, std::string& error) {
    NSEnumerator* const names = [[group allKeys] objectEnumerator];
    while (NSString* const name = [names nextObject]) {
        id object = [group objectForKey:name];
        if (readSetting([name toUTF8String], object, keys))
            continue;
        debug::assertionFailed(kSource, 129, "false");
        error = "key \"" + [name toStdString] + "\" holds what is no setting (" +
                [NSStringFromClass([object class]) toStdString] + ")";
        return false;
    }
    return true;
}

}  // namespace

bool readSettingsPList(NSDictionary* root, SettingsBase::GroupMap& settings, std::string& error) {
    NSEnumerator* const names = [[root allKeys] objectEnumerator];
    while (NSString* const name = [names nextObject]) {
        id group = [root objectForKey:name];
        const FastString groupName = [name toUTF8String];
        if (![group isKindOfClass:[NSDictionary class]]) {
            error = "group \"" + groupName.toStdString() + "\" is no dictionary";
            return false;
        }
        if (!readGroup(group, settings[groupName], error)) {
            error = "group \"" + groupName.toStdString() + "\", " + error;
            settings.clear();
            return false;
        }
    }
    return true;
}

}  // namespace tav::ula
