// SPDX-License-Identifier: MIT
#include "bench/PeerStore.h"

#include <QStringList>
#include <filesystem>
#include <vector>

namespace tav::bench {

StdStore toStdStore(const Data& data) {
    StdStore store;
    for (const Group& group : data)
        for (auto& keys = store[group.name]; const Key& key : group.keys)
            keys.emplace_hint(keys.end(), key.name, key.value);
    return store;
}

bool operator==(const Value& left, const Value& right) {
    return left.type == right.type && left.integer == right.integer &&
           left.boolean == right.boolean && !(left.real < right.real) &&
           !(right.real < left.real) && left.text == right.text && left.texts == right.texts;
}

namespace {

QVariant toQVariant(const Value& value) {
    QStringList texts;
    switch (value.type) {
    case ValueType::integer:
        return value.integer;
    case ValueType::boolean:
        return value.boolean;
    case ValueType::real:
        return value.real;
    case ValueType::text:
        return toQString(value.text);
    case ValueType::textArray:
        for (const std::string& text : value.texts)
            texts << toQString(text);
        return texts;
    }
    return {};
}

void setValue(GKeyFile* file, const char* group, const char* key, const Value& value) {
    std::vector<const char*> texts;
    switch (value.type) {
    case ValueType::integer:
        return g_key_file_set_integer(file, group, key, value.integer);
    case ValueType::boolean:
        return g_key_file_set_boolean(file, group, key, value.boolean ? TRUE : FALSE);
    case ValueType::real:
        return g_key_file_set_double(file, group, key, value.real);
    case ValueType::text:
        return g_key_file_set_string(file, group, key, value.text.c_str());
    case ValueType::textArray:
        for (const std::string& text : value.texts)
            texts.push_back(text.c_str());
        return g_key_file_set_string_list(file, group, key, texts.data(), texts.size());
    }
}

}  // namespace

void fill(QSettings& settings, const Data& data) {
    for (const Group& group : data) {
        settings.beginGroup(toQString(group.name));
        for (const Key& key : group.keys)
            settings.setValue(toQString(key.name), toQVariant(key.value));
        settings.endGroup();
    }
}

GKeyFilePtr toGKeyFile(const Data& data) {
    GKeyFilePtr file(g_key_file_new());
    for (const Group& group : data)
        for (const Key& key : group.keys)
            setValue(file.get(), group.name.c_str(), key.name.c_str(), key.value);
    return file;
}

const BenchFolder& BenchFolder::instance() {
    static const BenchFolder folder;
    return folder;
}

const std::string& qsettingsFile(std::size_t keyCount) {
    static std::map<std::size_t, std::string> made;
    std::string& path = made[keyCount];
    if (path.empty()) {
        path = BenchFolder::instance() / ("qsettings-" + std::to_string(keyCount) + ".ini");
        QSettings settings(toQString(path), QSettings::IniFormat);
        fill(settings, settingsData(keyCount));
        settings.sync();
    }
    return path;
}

std::string copyOfQSettingsFile(std::size_t keyCount) {
    static int copies = 0;
    const std::string& made = qsettingsFile(keyCount);
    std::string copy = made + "." + std::to_string(++copies);
    std::filesystem::copy_file(made, copy);
    return copy;
}

}  // namespace tav::bench
