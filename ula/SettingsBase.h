// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/FastString.h"
#include "ula/foundation/debug/Assertion.h"
#include "ula/foundation/util/IndexedMap.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace tav::ula {

/// The type of a settings value; the numbers are fixed.
enum SettingsType : std::uint32_t {
    SETTINGSTYPE_INVALID = 0,
    SETTINGSTYPE_INT = 1,
    SETTINGSTYPE_BOOL = 2,
    SETTINGSTYPE_DOUBLE = 3,
    SETTINGSTYPE_STRING = 4,
    SETTINGSTYPE_STRING_ARRAY = 5
};

/// The typed settings of an application in memory, by group and key.
///
/// A read names its default: when the key is missing or holds another type, the default is stored
/// under it and returned, so that a written file lists every setting ever asked for. A value of
/// the wrong type counts as absent and is replaced without complaint.
///
/// Empty group and key names are logged as assertions and used all the same.
/// Thread: one at a time; a string that was returned may go to any.
class ULA_API SettingsBase {
public:
    /// One value with its type. Only the field of that type means something.
    class ULA_API Setting {
    public:
        Setting() = default;
        Setting(int value) : _type(SETTINGSTYPE_INT), _intValue(value) {}
        Setting(bool value) : _type(SETTINGSTYPE_BOOL), _boolValue(value) {}
        Setting(double value) : _type(SETTINGSTYPE_DOUBLE), _doubleValue(value) {}
        Setting(FastString value) : _type(SETTINGSTYPE_STRING), _stringValue(std::move(value)) {}
        Setting(const char* value) : Setting(FastString(value)) {}
        Setting(std::vector<FastString> value)
            : _type(SETTINGSTYPE_STRING_ARRAY), _stringArrayValue(std::move(value)) {}
        /// Any other pointer would silently become a bool.
        template <class T>
        Setting(T*) = delete;

        SettingsType type() const { return _type; }

        /// The value. Fails: of another type, logs an assertion and gives whatever is there.
        int asInt() const {
            check(SETTINGSTYPE_INT, 50, "_type == SETTINGSTYPE_INT");
            return _intValue;
        }
        bool asBool() const {
            check(SETTINGSTYPE_BOOL, 51, "_type == SETTINGSTYPE_BOOL");
            return _boolValue;
        }
        double asDouble() const {
            check(SETTINGSTYPE_DOUBLE, 52, "_type == SETTINGSTYPE_DOUBLE");
            return _doubleValue;
        }
        const FastString& asString() const {
            check(SETTINGSTYPE_STRING, 53, "_type == SETTINGSTYPE_STRING");
            return _stringValue;
        }
        const std::vector<FastString>& asStringArray() const {
            check(SETTINGSTYPE_STRING_ARRAY, 54, "_type == SETTINGSTYPE_STRING_ARRAY");
            return _stringArrayValue;
        }

        /// The same type and the same value; doubles by their bits, so that NaN equals itself.
        friend ULA_API bool operator==(const Setting& left, const Setting& right);

    private:
        void check(SettingsType type, int line, const char* condition) const {
            if (_type != type)
                debug::assertionFailed("src/Core/../../SettingsBase", line, condition);
        }

        SettingsType _type = SETTINGSTYPE_INVALID;
        std::int32_t _intValue = 0;
        bool _boolValue = false;
        double _doubleValue = 0;
        FastString _stringValue;
        std::vector<FastString> _stringArrayValue;
    };

    /// Both ordered by the names' bytes, taken as signed, a prefix first: names that begin outside
    /// ASCII come before all others.
    using KeyMap = util::IndexedMap<FastString, Setting>;
    using GroupMap = util::IndexedMap<FastString, KeyMap>;

    SettingsBase();
    SettingsBase(const SettingsBase&) = delete;
    SettingsBase& operator=(const SettingsBase&) = delete;
    virtual ~SettingsBase();

    /// Stores a value, replacing what was there whatever its type.
    virtual void setGeneric(const FastString& groupName, const FastString& key,
                            const Setting& setting);

    int getInt(const FastString& groupName, const FastString& key, int defaultValue);
    bool getBool(const FastString& groupName, const FastString& key, bool defaultValue);
    double getDouble(const FastString& groupName, const FastString& key, double defaultValue);
    FastString getString(const FastString& groupName, const FastString& key,
                         const FastString& defaultValue);
    std::vector<FastString> getStringArray(const FastString& groupName, const FastString& key,
                                           const std::vector<FastString>& defaultValue);
    /// The stored value when it has the default's type; otherwise `defaultSetting` itself, after
    /// it was stored.
    /// Owner: the store; valid until the entry's group is replaced by a read.
    const Setting& get(const FastString& groupName, const FastString& key,
                       const Setting& defaultSetting);

    bool containsValue(const FastString& groupName, const FastString& key) const;
    const GroupMap& getAllSettings() const { return _settings; }

protected:
    /// File readers fill it directly, without `setGeneric`.
    GroupMap _settings;

private:
    const Setting* findOfType(const FastString& groupName, const FastString& key,
                              SettingsType type) const;
    template <class Value>
    Setting storeDefault(const FastString& groupName, const FastString& key,
                         const Value& defaultValue);
};

}  // namespace tav::ula
