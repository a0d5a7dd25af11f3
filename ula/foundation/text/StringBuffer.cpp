// SPDX-License-Identifier: MIT
#include "ula/foundation/text/StringBuffer.h"

#include <new>

namespace tav::text {

StringBuffer* StringBuffer::create(std::size_t capacity) {
    if (capacity > static_cast<std::size_t>(-1) / 2)
        throw std::bad_alloc();
    return new (::operator new(sizeof(StringBuffer) + capacity)) StringBuffer;
}

void StringBuffer::destroy() {
    this->~StringBuffer();
    ::operator delete(this);
}

}  // namespace tav::text
