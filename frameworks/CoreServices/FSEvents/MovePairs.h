// SPDX-License-Identifier: MIT
#pragma once

#include "KernelWatches.h"

#include <cstddef>
#include <vector>

namespace fsevents {

// Which of the events are the two ends of one move within what is watched. The kernel tells them
// in one go, but others may come in between.
class MovePairs {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    explicit MovePairs(const std::vector<KernelEvent>& events);

    // The index of the other end.
    std::size_t partnerOf(std::size_t index) const { return _partners[index]; }
    // Whether a move has begun whose end may still be to come.
    static bool mayLackEnd(const std::vector<KernelEvent>& events);

private:
    std::vector<std::size_t> _partners;
};

}  // namespace fsevents
