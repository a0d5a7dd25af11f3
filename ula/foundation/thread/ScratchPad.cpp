// SPDX-License-Identifier: MIT
#include "ula/foundation/thread/ScratchPad.h"

#include <algorithm>
#include <cstring>

namespace tav::thread {

char* ScratchPad::getBuffer(std::size_t size) {
    if (size > _size || !_buffer) {
        const std::size_t next = std::max<std::size_t>({size, 2 * _size, 256});
        _buffer.reset();
        _buffer = std::make_unique_for_overwrite<char[]>(next);
        _size = next;
    }
    return _buffer.get();
}

const char* ScratchPad::zeroTerminated(const String& text) {
    char* buffer = getBuffer(text.length() + 1);
    std::memcpy(buffer, text.data(), text.length());
    buffer[text.length()] = '\0';
    return buffer;
}

ScratchPad& globalScratchPad() {
    static thread_local ScratchPad pad;
    return pad;
}

}  // namespace tav::thread
