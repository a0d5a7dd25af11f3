// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"
#include "ula/foundation/text/FastString.h"

#include <cstddef>
#include <memory>

namespace tav::thread {

/// A buffer for texts that are needed only for the next call.
/// Thread: `globalScratchPad` gives each thread a pad of its own.
class TAV_FOUNDATION_API ScratchPad {
public:
    /// At least `size` bytes. Owner: the pad; valid until the next request on it.
    char* getBuffer(std::size_t size);
    /// The text with a zero behind it, for interfaces that want one; valid as `getBuffer`'s.
    const char* zeroTerminated(const String& text);

private:
    std::unique_ptr<char[]> _buffer;
    std::size_t _size = 0;
};

/// The calling thread's pad.
TAV_FOUNDATION_API ScratchPad& globalScratchPad();

}  // namespace tav::thread
