// SPDX-License-Identifier: MIT
#include "examples/demo/Checksum.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <ula/foundation/text/NumberConversion.h>

namespace demo {

namespace {

using namespace tav::ula;

const FastString kGroup = FastString::literal("Demo");
const FastString kKey = FastString::literal("Checksum");

/// FNV-1a: short, and it notices a torn file.
class Sum {
public:
    void add(std::string_view bytes) {
        for (const char byte : bytes)
            addByte(static_cast<unsigned char>(byte));
        addByte(0xFF);  // in no UTF-8 text: keeps "ab", "c" from being "a", "bc"
    }
    void add(const SettingsBase::Setting& setting) {
        add(std::string_view(std::to_string(setting.type())));
        switch (setting.type()) {
        case SETTINGSTYPE_INT:
            return add(std::string_view(std::to_string(setting.asInt())));
        case SETTINGSTYPE_BOOL:
            return add(std::string_view(setting.asBool() ? "1" : "0"));
        case SETTINGSTYPE_DOUBLE:
            return add(tav::text::dtostr(setting.asDouble()).view());
        case SETTINGSTYPE_STRING:
            return add(setting.asString().view());
        default:
            for (const FastString& text : setting.asStringArray())
                add(text.view());
        }
    }
    std::uint64_t value() const { return _value; }

private:
    void addByte(unsigned char byte) { _value = (_value ^ byte) * 1099511628211u; }

    std::uint64_t _value = 14695981039346656037u;
};

}  // namespace

FastString checksumOf(const SettingsBase& settings) {
    Sum sum;
    for (const auto& [group, keys] : settings.getAllSettings()) {
        sum.add(group.view());
        for (const auto& [key, setting] : keys) {
            if (group == kGroup && key == kKey)
                continue;
            sum.add(key.view());
            sum.add(setting);
        }
    }
    return FastString(std::to_string(sum.value()));
}

void sign(SettingsBase& settings) {
    settings.setGeneric(kGroup, kKey, FastString());
    settings.setGeneric(kGroup, kKey, checksumOf(settings));
}

bool isSigned(const SettingsBase& settings) {
    if (!settings.containsValue(kGroup, kKey))
        return false;
    const auto& entry = settings.getAllSettings().at(kGroup).at(kKey);
    return entry.type() == SETTINGSTYPE_STRING && entry.asString() == checksumOf(settings);
}

}  // namespace demo
