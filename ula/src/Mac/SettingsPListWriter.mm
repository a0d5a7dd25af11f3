// SPDX-License-Identifier: MIT
#include "SettingsPListWriter.h"

#import "ula/ObjCHelper.h"

namespace tav::ula {

namespace {

using Setting = SettingsBase::Setting;

/// Nil when one is not UTF-8.
NSArray* arrayOf(const std::vector<FastString>& texts) {
    NSMutableArray* const array = [NSMutableArray arrayWithCapacity:texts.size()];
    for (const FastString& text : texts) {
        NSString* const member = [NSString fromUTF8String:text];
        if (member == nil)
            return nil;
        [array addObject:member];
    }
    return array;
}

/// Nil for a text that is not UTF-8.
id objectOf(const Setting& setting) {
    switch (setting.type()) {
    case SETTINGSTYPE_INT:
        return [NSNumber numberWithInt:setting.asInt()];
    case SETTINGSTYPE_BOOL:
        return [NSNumber numberWithBool:setting.asBool()];
    case SETTINGSTYPE_DOUBLE:
        return [NSNumber numberWithDouble:setting.asDouble()];
    case SETTINGSTYPE_STRING:
        return [NSString fromUTF8String:setting.asString()];
    default:
        return arrayOf(setting.asStringArray());
    }
}

/// Nil when a name or a text is not UTF-8.
NSDictionary* dictionaryOf(const SettingsBase::KeyMap& keys, std::string& error) {
    NSMutableDictionary* const group = [NSMutableDictionary dictionaryWithCapacity:1];
    for (const auto& [key, setting] : keys) {
        if (setting.type() == SETTINGSTYPE_INVALID)
            continue;
        NSString* const name = [NSString fromUTF8String:key];
        id object = objectOf(setting);
        if (name == nil || object == nil) {
            error = "key \"" + key.toStdString() + "\": a text that is not UTF-8";
            return nil;
        }
        [group setObject:object forKey:name];
    }
    return group;
}

}  // namespace

NSDictionary* makePropertyList(const SettingsBase::GroupMap& settings, std::string& error) {
    NSMutableDictionary* const root = [NSMutableDictionary dictionaryWithCapacity:1];
    for (const auto& [groupName, keys] : settings) {
        NSString* const name = [NSString fromUTF8String:groupName];
        error = "a name that is not UTF-8";
        NSDictionary* const group = name == nil ? nil : dictionaryOf(keys, error);
        if (group == nil) {
            error = "group \"" + groupName.toStdString() + "\", " + error;
            return nil;
        }
        [root setObject:group forKey:name];
    }
    error.clear();
    return root;
}

}  // namespace tav::ula
