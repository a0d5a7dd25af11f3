// SPDX-License-Identifier: MIT
#include "Source.h"

namespace cf {

Source::Source(CFRunLoopSourceRef object, CFIndex order, const CFRunLoopSourceContext& context)
    : _object(object), _order(order), _context(context) {
    if (_context.retain != nullptr)
        _context.info = const_cast<void*>(_context.retain(_context.info));
}

Source::~Source() {
    if (_context.release != nullptr)
        _context.release(_context.info);
}

void Source::perform() {
    if (_context.perform != nullptr)
        _context.perform(_context.info);
}

void Source::didEnter(CFRunLoopRef loop, CFStringRef mode) {
    if (_context.schedule != nullptr)
        _context.schedule(_context.info, loop, mode);
}

void Source::didLeave(CFRunLoopRef loop, CFStringRef mode) {
    if (_context.cancel != nullptr)
        _context.cancel(_context.info, loop, mode);
}

}  // namespace cf
