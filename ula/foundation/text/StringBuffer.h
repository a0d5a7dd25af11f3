// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"
#include "ula/foundation/thread/ReferenceCount.h"

#include <cstddef>

namespace tav::text {

/// The bytes that copies of a `FastString` share: a count and the bytes in one block of
/// memory. Made with one reference, freed with the last.
/// Thread: the count may be changed from any thread; the bytes are written only by the maker,
/// before the buffer is shared.
class StringBuffer {
public:
    /// A buffer with one reference. Owner: the caller, who releases it.
    /// Fails: throws std::bad_alloc.
    TAV_FOUNDATION_API static StringBuffer* create(std::size_t capacity);

    void retain() { thread::retainReference(&_references); }
    void release() {
        if (thread::releaseReference(&_references))
            destroy();
    }

    char* bytes() { return reinterpret_cast<char*>(this + 1); }

private:
    StringBuffer() = default;
    TAV_FOUNDATION_API void destroy();

    int volatile _references = 1;
};

}  // namespace tav::text
