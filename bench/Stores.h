// SPDX-License-Identifier: MIT
#pragma once

#include "bench/PeerStore.h"
#include "ula/SettingsXML.h"

#include <absl/container/btree_map.h>
#include <absl/container/flat_hash_map.h>
#include <benchmark/benchmark.h>

/// Ours and the peers' stores behind the same few calls. Each has the names of an access ready in
/// the form that its own callers would keep them in.
namespace tav::bench {

struct OurStore {
    struct Query {
        ula::FastString group;
        ula::FastString key;
    };
    static Query query(const Address& address) { return {address.group, address.key}; }

    explicit OurStore(const Data& data) {
        for (const Group& group : data)
            for (const ula::FastString name(group.name); const Key& key : group.keys)
                settings.setGeneric(name, key.name, toSetting(key.value));
    }

    static ula::SettingsBase::Setting toSetting(const Value& value) {
        switch (value.type) {
        case ValueType::integer:
            return value.integer;
        case ValueType::boolean:
            return value.boolean;
        case ValueType::real:
            return value.real;
        case ValueType::text:
            return ula::FastString(value.text);
        case ValueType::textArray:
            break;
        }
        return std::vector<ula::FastString>(value.texts.begin(), value.texts.end());
    }

    int getInt(const Query& query) { return settings.getInt(query.group, query.key, 0); }
    std::size_t getString(const Query& query) {
        const ula::FastString text = settings.getString(query.group, query.key, noText);
        return text.length();
    }
    void setInt(const Query& query, int value) {
        settings.setGeneric(query.group, query.key, value);
    }

    ula::SettingsXML settings{ula::FastString::literal("bench"), ula::FastString::literal("ula"),
                              false};
    const ula::FastString noText;
};

/// Whether ours has these settings and no others.
inline bool holdsAll(const ula::SettingsBase::GroupMap& ours, const Data& data) {
    if (ours.size() != data.size())
        return false;
    for (const Group& group : data) {
        const auto found = ours.find(group.name);
        if (found == ours.end() || found->second.size() != group.keys.size())
            return false;
        for (const Key& key : group.keys) {
            const auto stored = found->second.find(key.name);
            if (stored == found->second.end() ||
                !(stored->second == OurStore::toSetting(key.value)))
                return false;
        }
    }
    return true;
}

/// Maps of maps. The getters check group, key and type as ours do; a text is returned by value,
/// so that the store may change while it is used.
template <template <class...> class Map>
struct MapStore {
    using Query = Address;
    static Query query(const Address& address) { return address; }

    explicit MapStore(const Data& data) {
        for (const Group& group : data)
            for (auto& keys = groups[group.name]; const Key& key : group.keys)
                keys[key.name] = key.value;
    }

    const Value* find(const Query& query, ValueType type) const {
        const auto group = groups.find(query.group);
        if (group == groups.end())
            return nullptr;
        const auto key = group->second.find(query.key);
        return key != group->second.end() && key->second.type == type ? &key->second : nullptr;
    }
    int getInt(const Query& query) {
        const Value* value = find(query, ValueType::integer);
        return value != nullptr ? value->integer : 0;
    }
    std::size_t getString(const Query& query) {
        const Value* value = find(query, ValueType::text);
        std::string text = value != nullptr ? value->text : std::string();
        benchmark::DoNotOptimize(text);
        return text.size();
    }
    void setInt(const Query& query, int number) {
        Value value;
        value.integer = number;
        groups[query.group][query.key] = std::move(value);
    }

    Map<std::string, Map<std::string, Value>> groups;
};

template <class... Arguments>
using StdMapOf = std::map<Arguments...>;
template <class... Arguments>
using BtreeMapOf = absl::btree_map<Arguments...>;
template <class... Arguments>
using FlatHashMapOf = absl::flat_hash_map<Arguments...>;

/// Values come from a file, as in an application: one of its own, for changes are written to it.
struct QSettingsStore {
    using Query = QString;
    static Query query(const Address& address) {
        return toQString(address.group) + '/' + toQString(address.key);
    }

    explicit QSettingsStore(std::size_t keyCount)
        : path(copyOfQSettingsFile(keyCount)), settings(toQString(path), QSettings::IniFormat) {
        // Sections are parsed when they are first asked for.
        benchmark::DoNotOptimize(settings.allKeys());
    }

    int getInt(const Query& query) { return settings.value(query, 0).toInt(); }
    std::size_t getString(const Query& query) {
        return static_cast<std::size_t>(settings.value(query, noText).toString().size());
    }
    void setInt(const Query& query, int value) { settings.setValue(query, value); }

    std::string path;
    QSettings settings;
    const QString noText;
};

struct GKeyFileStore {
    using Query = Address;
    static Query query(const Address& address) { return address; }

    explicit GKeyFileStore(const Data& data) : file(toGKeyFile(data)) {}

    int getInt(const Query& query) {
        return g_key_file_get_integer(file.get(), query.group.c_str(), query.key.c_str(), nullptr);
    }
    std::size_t getString(const Query& query) {
        char* text =
            g_key_file_get_string(file.get(), query.group.c_str(), query.key.c_str(), nullptr);
        const std::size_t length = std::char_traits<char>::length(text);
        g_free(text);
        return length;
    }
    void setInt(const Query& query, int value) {
        g_key_file_set_integer(file.get(), query.group.c_str(), query.key.c_str(), value);
    }

    GKeyFilePtr file;
};

/// The first argument of a benchmark.
inline std::size_t keyCountOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

/// A store with the data of that many keys.
template <class Store>
std::unique_ptr<Store> makeStore(std::size_t keyCount) {
    return std::make_unique<Store>(settingsData(keyCount));
}
template <>
inline std::unique_ptr<QSettingsStore> makeStore<QSettingsStore>(std::size_t keyCount) {
    return std::make_unique<QSettingsStore>(keyCount);
}

template <class Store>
std::vector<typename Store::Query> makeQueries(std::size_t keyCount, ValueType type) {
    std::vector<typename Store::Query> queries;
    for (const Address& address : shuffledAddresses(settingsData(keyCount), type))
        queries.push_back(Store::query(address));
    return queries;
}

}  // namespace tav::bench
