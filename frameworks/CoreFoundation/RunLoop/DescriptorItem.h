// SPDX-License-Identifier: MIT
#pragma once

#include "../RunLoopDescriptor.h"
#include "Item.h"

namespace cf {

/// The part of a RunLoopDescriptor that run loops hold.
class DescriptorItem final : public Item {
public:
    /// Starts with one reference, the maker's.
    DescriptorItem(int descriptor, std::uint32_t events, RunLoopDescriptor::Callback callback);

    void retain() override { _references.fetch_add(1, std::memory_order_relaxed); }
    void release() override;

    int descriptor() const { return _descriptor; }
    std::uint32_t events() const { return _events; }
    /// Unique in the process, for ever: a late event of a dead item finds nobody.
    std::uint64_t id() const { return _id; }
    void call(std::uint32_t events) const { _callback(events); }

private:
    int _descriptor;
    std::uint32_t _events;
    std::uint64_t _id;
    RunLoopDescriptor::Callback _callback;
    std::atomic<int> _references{1};
};

}  // namespace cf
