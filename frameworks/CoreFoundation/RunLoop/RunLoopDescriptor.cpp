// SPDX-License-Identifier: MIT
#include "../RunLoopDescriptor.h"

#include "DescriptorItem.h"
#include "Membership.h"
#include "ModeName.h"
#include "RunLoopObject.h"

namespace cf {

RunLoopDescriptor::RunLoopDescriptor(int descriptor, std::uint32_t events, Callback callback)
    : _item(new DescriptorItem(descriptor, events, std::move(callback))) {
}

RunLoopDescriptor::~RunLoopDescriptor() {
    invalidate();
    _item->release();
}

void RunLoopDescriptor::schedule(CFRunLoopRef runLoop, CFStringRef mode) {
    Membership::add(loopOf(runLoop), *_item, modeName(mode));
}

void RunLoopDescriptor::unschedule(CFRunLoopRef runLoop, CFStringRef mode) {
    Membership::remove(loopOf(runLoop), *_item, modeName(mode));
}

void RunLoopDescriptor::invalidate() {
    Membership::invalidate(*_item);
}

}  // namespace cf
