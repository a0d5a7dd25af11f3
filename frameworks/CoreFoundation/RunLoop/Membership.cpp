// SPDX-License-Identifier: MIT
#include "Membership.h"

namespace cf {

std::mutex& Membership::lock() {
    // Never destroyed: threads may outlive the static objects.
    static auto* const mutex = new std::mutex;
    return *mutex;
}

bool Membership::isIn(const Item& item, const RunLoop& loop) {
    return std::any_of(item._loops.begin(), item._loops.end(),
                       [&](const auto& other) { return other.get() == &loop; });
}

bool Membership::mayEnter(const Item& item, const RunLoop& loop) {
    return item.allowsSeveralLoops() || item._loops.empty() || isIn(item, loop);
}

Retained<RunLoop> Membership::forget(Item& item, const RunLoop& loop) {
    auto found = std::find_if(item._loops.begin(), item._loops.end(),
                              [&](const auto& other) { return other.get() == &loop; });
    if (found == item._loops.end())
        return {};
    Retained<RunLoop> forgotten = std::move(*found);
    item._loops.erase(found);
    return forgotten;
}

void Membership::setFireDate(Timer& timer, CFAbsoluteTime fireDate) {
    std::lock_guard guard(lock());
    if (timer._loops.empty())
        timer.setFireDate(fireDate);
    else
        timer._loops.front()->setFireDate(timer, fireDate);
}

}  // namespace cf
