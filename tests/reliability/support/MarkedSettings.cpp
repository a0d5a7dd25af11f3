// SPDX-License-Identifier: MIT
#include "tests/reliability/support/MarkedSettings.h"

#include "tests/support/TemporaryFolder.h"

#include <vector>

namespace tav::test {

namespace {

using ula::FastString;
using Setting = ula::SettingsBase::Setting;

constexpr int kGroups = 10;
constexpr int kKeys = 60;

FastString groupName(int group) {
    return FastString("Gr\u00fcn " + std::to_string(group));
}

FastString keyName(int key) {
    return FastString("Key " + std::to_string(key));
}

Setting valueWithMark(int key, int mark) {
    const std::string text = std::to_string(mark);
    switch (key % 4) {
    case 0:
        return Setting(mark);
    case 1:
        return Setting(static_cast<double>(mark) + 0.5);
    case 2:
        // Of a length that depends on the mark: a mixture of two files shows at its end, too.
        return Setting(FastString(text + std::string(static_cast<std::size_t>(mark % 97), '<')));
    default:
        return Setting(std::vector<FastString>(static_cast<std::size_t>(mark % 3), text));
    }
}

bool carriesMark(const ula::SettingsBase::KeyMap& keys, int mark) {
    if (keys.size() != kKeys)
        return false;
    for (int key = 0; key < kKeys; ++key) {
        const auto found = keys.find(keyName(key));
        if (found == keys.end() || !(found->second == valueWithMark(key, mark)))
            return false;
    }
    return true;
}

}  // namespace

void fillWithMark(ula::SettingsXML& settings, int mark) {
    for (int group = 0; group < kGroups; ++group)
        for (int key = 0; key < kKeys; ++key)
            settings.setGeneric(groupName(group), keyName(key), valueWithMark(key, mark));
}

std::optional<int> markOf(ula::SettingsXML& settings) {
    if (!settings.containsValue(groupName(0), keyName(0)) ||
        settings.getAllSettings().size() != kGroups)
        return std::nullopt;
    const int mark = settings.getInt(groupName(0), keyName(0), -1);
    for (int group = 0; group < kGroups; ++group) {
        const auto found = settings.getAllSettings().find(groupName(group));
        if (found == settings.getAllSettings().end() || !carriesMark(found->second, mark))
            return std::nullopt;
    }
    return mark;
}

std::optional<int> markOfFile(const std::string& path) {
    ula::SettingsXML settings("Reliability", "Tests", false);
    try {
        if (!settings.read(xml::XmlDocumentRapid::load(FastString(path), true)))
            return std::nullopt;
    } catch (const std::exception&) {
        return std::nullopt;
    }
    return markOf(settings);
}

std::string textWithMark(int mark) {
    const TemporaryFolder folder("/dev/shm");
    return textWithMark(mark, folder / "text.xml");
}

std::string textWithMark(int mark, const std::string& path) {
    ula::SettingsXML settings("Reliability", "Tests", FastString(path), false);
    fillWithMark(settings, mark);
    settings.write();
    return readFile(path);
}

}  // namespace tav::test
