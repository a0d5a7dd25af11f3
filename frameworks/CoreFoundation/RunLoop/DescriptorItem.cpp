// SPDX-License-Identifier: MIT
#include "DescriptorItem.h"

#include "Port.h"

namespace cf {

namespace {

std::uint64_t nextId() {
    static std::atomic<std::uint64_t> next{Port::firstId};
    return next.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

DescriptorItem::DescriptorItem(int descriptor, std::uint32_t events,
                               RunLoopDescriptor::Callback callback)
    : _descriptor(descriptor), _events(events), _id(nextId()), _callback(std::move(callback)) {
}

void DescriptorItem::release() {
    if (_references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

}  // namespace cf
