// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <stdexcept>
#include <utility>
#include <vector>

namespace tav::util {

/// A std::map whose look-ups go through a hash table: iteration is in the keys' order, references
/// and iterators stay valid until their entry is erased, and finding a key costs the same
/// whatever the size. Maps of a few entries have no table.
///
/// Thread: as the standard containers: any number of readers, or one writer.
template <class Key, class Value, class Hash = std::hash<Key>>
class IndexedMap {
    using Map = std::map<Key, Value>;

public:
    using key_type = Key;
    using mapped_type = Value;
    using value_type = typename Map::value_type;
    using size_type = typename Map::size_type;
    using iterator = typename Map::iterator;
    using const_iterator = typename Map::const_iterator;

    IndexedMap() = default;
    IndexedMap(std::initializer_list<value_type> entries) {
        for (const value_type& entry : entries)
            insert(entry);
    }
    IndexedMap(const IndexedMap& other) : _map(other._map) { rebuildIndex(); }
    IndexedMap(IndexedMap&& other) noexcept { swap(other); }
    IndexedMap& operator=(IndexedMap other) noexcept {
        swap(other);
        return *this;
    }
    void swap(IndexedMap& other) noexcept {
        _map.swap(other._map);
        _slots.swap(other._slots);
    }

    iterator begin() { return _map.begin(); }
    iterator end() { return _map.end(); }
    const_iterator begin() const { return _map.begin(); }
    const_iterator end() const { return _map.end(); }
    size_type size() const { return _map.size(); }
    bool empty() const { return _map.empty(); }

    iterator find(const Key& key) { return _slots.empty() ? _map.find(key) : findIndexed(key); }
    const_iterator find(const Key& key) const { return const_cast<IndexedMap*>(this)->find(key); }
    bool contains(const Key& key) const { return find(key) != end(); }
    size_type count(const Key& key) const { return contains(key) ? 1 : 0; }
    iterator lower_bound(const Key& key) { return _map.lower_bound(key); }
    const_iterator lower_bound(const Key& key) const { return _map.lower_bound(key); }

    Value& at(const Key& key) {
        const iterator entry = find(key);
        if (entry == end())
            throw std::out_of_range("IndexedMap::at");
        return entry->second;
    }
    const Value& at(const Key& key) const { return const_cast<IndexedMap*>(this)->at(key); }
    Value& operator[](const Key& key) {
        const iterator entry = find(key);
        return entry != end() ? entry->second : add(_map.emplace(key, Value()).first)->second;
    }

    /// As std::map's: an entry that is there already is left alone.
    std::pair<iterator, bool> insert(value_type entry) {
        const iterator known = find(entry.first);
        if (known != end())
            return {known, false};
        return {add(_map.insert(std::move(entry)).first), true};
    }
    template <class Mapped>
    std::pair<iterator, bool> insert_or_assign(const Key& key, Mapped&& value) {
        const iterator known = find(key);
        if (known == end())
            return {add(_map.emplace(key, std::forward<Mapped>(value)).first), true};
        known->second = std::forward<Mapped>(value);
        return {known, false};
    }
    /// Adds or replaces an entry; the fastest way to fill a map with keys in ascending order.
    /// Look-ups walk the tree until `buildIndex` or any other addition.
    template <class Mapped>
    void append(const Key& key, Mapped&& value) {
        if (!_slots.empty()) {
            insert_or_assign(key, std::forward<Mapped>(value));
            return;
        }
        const size_type before = size();
        const iterator entry = _map.try_emplace(_map.end(), key, std::forward<Mapped>(value));
        if (size() == before)
            entry->second = std::forward<Mapped>(value);  // not used up: the key was there
    }
    void buildIndex() { rebuildIndex(); }

    iterator erase(const_iterator entry) {
        const iterator next = _map.erase(entry);
        rebuildIndex();
        return next;
    }
    size_type erase(const Key& key) {
        const iterator entry = find(key);
        if (entry == end())
            return 0;
        erase(entry);
        return 1;
    }
    void clear() {
        _map.clear();
        _slots.clear();
    }

    friend bool operator==(const IndexedMap& left, const IndexedMap& right) {
        return left._map == right._map;
    }

private:
    /// Open addressing with linear probing; at most half of the slots are taken.
    struct Slot {
        std::uint32_t hash = 0;
        bool taken = false;
        iterator entry{};
    };

    /// Below this a walk down the tree is as fast.
    static constexpr size_type kLargestUnindexed = 8;

    static std::uint32_t hashOf(const Key& key) {
        const std::size_t hash = Hash()(key);
        return static_cast<std::uint32_t>(hash ^ (hash >> 32));
    }

    iterator findIndexed(const Key& key) {
        const std::uint32_t hash = hashOf(key);
        const std::size_t mask = _slots.size() - 1;
        for (std::size_t i = hash & mask; _slots[i].taken; i = (i + 1) & mask)
            if (_slots[i].hash == hash && _slots[i].entry->first == key)
                return _slots[i].entry;
        return _map.end();
    }

    /// Enters a new entry of the map into the index.
    iterator add(iterator entry) {
        if (2 * _map.size() > _slots.size())
            growIndex(entry);
        else
            place({hashOf(entry->first), true, entry});
        return entry;
    }

    void place(Slot slot) {
        const std::size_t mask = _slots.size() - 1;
        std::size_t i = slot.hash & mask;
        while (_slots[i].taken)
            i = (i + 1) & mask;
        _slots[i] = slot;
    }

    void growIndex(iterator added) {
        if (_slots.empty())
            return rebuildIndex();
        std::vector<Slot> smaller(2 * _slots.size());
        smaller.swap(_slots);
        for (const Slot& slot : smaller)
            if (slot.taken)
                place(slot);
        place({hashOf(added->first), true, added});
    }

    void rebuildIndex() {
        _slots.clear();
        if (_map.size() <= kLargestUnindexed)
            return;
        std::size_t slots = 4 * kLargestUnindexed;
        while (slots < 2 * _map.size())
            slots *= 2;
        _slots.resize(slots);
        for (iterator entry = _map.begin(); entry != _map.end(); ++entry)
            place({hashOf(entry->first), true, entry});
    }

    Map _map;
    std::vector<Slot> _slots;
};

}  // namespace tav::util
