// SPDX-License-Identifier: MIT
#pragma once

#include "ModeItems.h"
#include "ModeName.h"
#include "WakePort.h"

#include <array>
#include <map>
#include <utility>
#include <vector>

namespace cf {

/// Which items a run loop serves in which mode. Items of the common modes are kept once, beside
/// those of the single modes; an item is never in both for the same mode.
///
/// Thread: guarded by the run loop's lock. Mode names are those of modeName().
class ModeTable {
public:
    /// A port that the thread's host loop has to watch in that mode.
    struct Watch {
        int descriptor;
        CFStringRef mode;
    };
    using Modes = std::vector<CFStringRef>;
    /// The sets of items that one mode serves; the second one may be null.
    using Served = std::array<ModeItems*, 2>;

    explicit ModeTable(const WakePort& wakePort);

    bool isCommon(CFStringRef mode) const;
    /// Returns the sources that are served in that mode only from now on.
    std::vector<Retained<Source>> addCommon(CFStringRef mode);

    /// Makes the items of the mode, when it has none yet.
    Served served(CFStringRef mode);
    /// Those of the single mode, made when it has none yet.
    ModeItems& single(CFStringRef mode);
    /// Without a port of its own to wait on when the mode has none yet: for questions.
    std::array<const ModeItems*, 2> present(CFStringRef mode) const;
    bool isEmpty(CFStringRef mode) const;

    /// These answer the single modes in which the item is served only from now on, or no more.
    template <class T>
    Modes insert(T& item, CFStringRef mode);
    template <class T>
    Modes erase(T& item, CFStringRef mode);
    template <class T>
    Modes eraseEverywhere(T& item);
    template <class T>
    bool contains(const T& item, CFStringRef mode) const;
    template <class T>
    bool containsAnywhere(const T& item) const;

    /// Calls action for every set of items there is.
    template <class Action>
    void forEach(Action action);

    /// The watches that have become necessary since the last call.
    std::vector<Watch> takeWatches() { return std::exchange(_watches, {}); }
    bool hasWatches() const { return !_watches.empty(); }

private:
    template <class T>
    void leaveSingleModes(T& item);
    template <class T>
    Modes eraseFromOneCommonMode(T& item, CFStringRef mode);

    const WakePort& _wakePort;
    ModeItems _common;
    Modes _commonModes;
    /// Never shrinks: ports are polled without the lock.
    std::map<CFStringRef, ModeItems> _single;
    std::vector<Watch> _watches;
};

template <class Action>
void ModeTable::forEach(Action action) {
    action(_common);
    for (auto& [mode, items] : _single)
        action(items);
}

template <class T>
ModeTable::Modes ModeTable::insert(T& item, CFStringRef mode) {
    Modes entered;
    Modes asked = mode == commonModes() ? _commonModes : Modes{mode};
    for (CFStringRef each : asked) {
        if (!contains(item, each))
            entered.push_back(each);
    }
    if (mode == commonModes()) {
        leaveSingleModes(item);
        if (!_common.insert(item))
            entered.clear();
    } else if (!entered.empty() && !single(mode).insert(item)) {
        entered.clear();
    }
    return entered;
}

template <class T>
ModeTable::Modes ModeTable::erase(T& item, CFStringRef mode) {
    if (mode == commonModes()) {
        leaveSingleModes(item);
        return _common.erase(item) ? _commonModes : Modes{};
    }
    auto found = _single.find(mode);
    if (found != _single.end() && found->second.erase(item))
        return {mode};
    return eraseFromOneCommonMode(item, mode);
}

template <class T>
ModeTable::Modes ModeTable::eraseFromOneCommonMode(T& item, CFStringRef mode) {
    if (!isCommon(mode) || !_common.erase(item))
        return {};
    for (CFStringRef other : _commonModes) {
        if (other != mode)
            single(other).insert(item);
    }
    return {mode};
}

template <class T>
ModeTable::Modes ModeTable::eraseEverywhere(T& item) {
    Modes left = _common.erase(item) ? _commonModes : Modes{};
    for (auto& [mode, items] : _single) {
        if (items.erase(item))
            left.push_back(mode);
    }
    return left;
}

template <class T>
bool ModeTable::contains(const T& item, CFStringRef mode) const {
    if (mode == commonModes() || isCommon(mode)) {
        if (_common.contains(item))
            return true;
    }
    auto found = _single.find(mode);
    return found != _single.end() && found->second.contains(item);
}

template <class T>
bool ModeTable::containsAnywhere(const T& item) const {
    if (_common.contains(item))
        return true;
    for (const auto& [mode, items] : _single) {
        if (items.contains(item))
            return true;
    }
    return false;
}

template <class T>
void ModeTable::leaveSingleModes(T& item) {
    for (CFStringRef mode : _commonModes) {
        auto found = _single.find(mode);
        if (found != _single.end())
            found->second.erase(item);
    }
}

}  // namespace cf
