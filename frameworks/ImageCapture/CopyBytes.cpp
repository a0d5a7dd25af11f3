// SPDX-License-Identifier: MIT
#include "ImageCapture/CopyBytes.h"

#include "CoreFoundation/WholeContent.h"

#include <algorithm>
#include <fcntl.h>
#include <memory>

namespace imagecapture {

namespace {

constexpr size_t kPieceSize = 1 << 20;

// The kernel's own copy tells one error for both sides: whatever is left is done by hand, which
// tells them apart.
void copyInKernel(int source, int target, uint64_t size, CopyResult& result) {
    while (result.copied < size) {
        ssize_t count = copy_file_range(source, nullptr, target, nullptr,
                                        static_cast<size_t>(size - result.copied), 0);
        if (count <= 0)
            return;
        result.copied += static_cast<uint64_t>(count);
    }
}

}  // namespace

CopyResult copyBytes(int source, int target, uint64_t size) {
    CopyResult result;
    copyInKernel(source, target, size, result);
    if (result.copied == size)
        return result;
    auto buffer = std::make_unique<char[]>(kPieceSize);
    while (result.copied < size) {
        size_t wanted = static_cast<size_t>(std::min<uint64_t>(kPieceSize, size - result.copied));
        ssize_t count = cf::retryInterrupted([&] { return read(source, buffer.get(), wanted); });
        if (count < 0)
            result.readError = errno;
        if (count <= 0)
            break;
        if (!cf::writeAll(target, {buffer.get(), static_cast<size_t>(count)})) {
            result.writeError = errno;
            break;
        }
        result.copied += static_cast<uint64_t>(count);
    }
    return result;
}

}  // namespace imagecapture
