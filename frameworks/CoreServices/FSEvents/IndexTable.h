// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace fsevents {

// Numbers found by the hash of what they stand for; several may share one. Eight bytes a place, as
// a tree has hundreds of thousands of them.
class IndexTable {
public:
    static constexpr uint32_t kNone = UINT32_MAX;

    // Calls visit(number) for everything with this hash until it returns true; returns that number,
    // else kNone.
    template <class Visit>
    uint32_t find(uint32_t hash, Visit visit) const {
        if (_places.empty())
            return kNone;
        for (std::size_t at = home(hash); _places[at].number != kNone; at = next(at))
            if (_places[at].hash == hash && visit(_places[at].number))
                return _places[at].number;
        return kNone;
    }

    void insert(uint32_t hash, uint32_t number) {
        if (4 * (_count + 1) > 3 * _places.size())
            grow();
        put({hash, number});
        ++_count;
    }

    // Does nothing when it is not there.
    void erase(uint32_t hash, uint32_t number) {
        if (_places.empty())
            return;
        std::size_t at = home(hash);
        while (_places[at].number != number || _places[at].hash != hash) {
            if (_places[at].number == kNone)
                return;
            at = next(at);
        }
        close(at);
        --_count;
    }

private:
    struct Place {
        uint32_t hash = 0;
        uint32_t number = kNone;
    };

    std::size_t home(uint32_t hash) const { return hash & (_places.size() - 1); }
    std::size_t next(std::size_t at) const { return (at + 1) & (_places.size() - 1); }

    void put(Place place) {
        std::size_t at = home(place.hash);
        while (_places[at].number != kNone)
            at = next(at);
        _places[at] = place;
    }

    void grow() {
        std::vector<Place> old = std::exchange(_places, {});
        _places.resize(old.empty() ? 16 : 2 * old.size());
        for (const Place& place : old)
            if (place.number != kNone)
                put(place);
    }

    // Moves up what follows, so that no search ends too early.
    void close(std::size_t gap) {
        for (std::size_t at = next(gap); _places[at].number != kNone; at = next(at)) {
            const std::size_t distance = (at - home(_places[at].hash)) & (_places.size() - 1);
            if (distance < ((at - gap) & (_places.size() - 1)))
                continue;
            _places[gap] = _places[at];
            gap = at;
        }
        _places[gap] = {};
    }

    // As many as a power of two.
    std::vector<Place> _places;
    std::size_t _count = 0;
};

}  // namespace fsevents
