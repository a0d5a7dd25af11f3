// SPDX-License-Identifier: MIT
#include "ModeTable.h"

#include <CoreFoundation/CFString.h>
#include <algorithm>

namespace cf {

ModeTable::ModeTable(const WakePort& wakePort) : _wakePort(wakePort), _common(&wakePort) {
    // The application's loops for alerts and menus run in the last two. Named here by their texts,
    // because programs without windows do not load the library that defines them.
    addCommon(defaultMode());
    addCommon(modeName(CFSTR("NSModalPanelRunLoopMode")));
    addCommon(modeName(CFSTR("NSEventTrackingRunLoopMode")));
}

bool ModeTable::isCommon(CFStringRef mode) const {
    return std::find(_commonModes.begin(), _commonModes.end(), mode) != _commonModes.end();
}

std::vector<Retained<Source>> ModeTable::addCommon(CFStringRef mode) {
    std::vector<Retained<Source>> entered;
    if (isCommon(mode) || mode == commonModes())
        return entered;
    _commonModes.push_back(mode);
    _watches.push_back({_common.port().descriptor(), mode});
    _common.appendSources(entered);
    auto found = _single.find(mode);
    if (found == _single.end())
        return entered;
    std::erase_if(entered, [&](auto& source) { return found->second.contains(*source); });
    found->second.eraseAllOf(_common);
    return entered;
}

ModeItems& ModeTable::single(CFStringRef mode) {
    auto found = _single.find(mode);
    if (found != _single.end())
        return found->second;
    // In a common mode the port of the common items, which takes the wake-ups, is watched as well.
    const WakePort* wakePort = isCommon(mode) ? nullptr : &_wakePort;
    ModeItems& items = _single.try_emplace(mode, wakePort).first->second;
    _watches.push_back({items.port().descriptor(), mode});
    return items;
}

ModeTable::Served ModeTable::served(CFStringRef mode) {
    if (!isCommon(mode))
        return {&single(mode), nullptr};
    auto found = _single.find(mode);
    return {&_common, found == _single.end() ? nullptr : &found->second};
}

std::array<const ModeItems*, 2> ModeTable::present(CFStringRef mode) const {
    auto found = _single.find(mode);
    return {isCommon(mode) ? &_common : nullptr, found == _single.end() ? nullptr : &found->second};
}

bool ModeTable::isEmpty(CFStringRef mode) const {
    for (const ModeItems* items : present(mode)) {
        if (items != nullptr && !items->empty())
            return false;
    }
    return true;
}

}  // namespace cf
