// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tav::text::detail {

template <class Word>
Word loadWord(const char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// The signed order of the first byte in which two different words differ, in memory order.
inline int orderOfFirstDifference(std::uint64_t left, std::uint64_t right) {
    const std::uint64_t difference = left ^ right;
    const int bit = std::endian::native == std::endian::little
                        ? std::countr_zero(difference) & ~7
                        : 56 - (std::countl_zero(difference) & ~7);
    return static_cast<std::int8_t>(left >> bit) < static_cast<std::int8_t>(right >> bit) ? -1 : 1;
}

/// The last `length` (under 8) bytes as one word; bytes may stand in it twice, which cannot
/// change where two words of the same length first differ.
inline std::uint64_t loadTail(const char* bytes, std::size_t length) {
    if (length >= 4) {
        const std::uint64_t first = loadWord<std::uint32_t>(bytes);
        const std::uint64_t last = loadWord<std::uint32_t>(bytes + length - 4);
        return std::endian::native == std::endian::little ? first | last << 32 : first << 32 | last;
    }
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const std::uint64_t byte = static_cast<unsigned char>(bytes[i]);
        word |= byte << (std::endian::native == std::endian::little ? 8 * i : 56 - 8 * i);
    }
    return word;
}

/// Compares byte by byte as signed 8-bit values over the shorter length, then by length:
/// negative, zero or positive. Eight bytes a step: memcmp would not tell where they differ, and
/// the order of bytes above 127 is not its order.
inline int compareSignedBytes(const char* left, std::size_t leftLength, const char* right,
                              std::size_t rightLength) {
    const std::size_t length = std::min(leftLength, rightLength);
    std::size_t done = 0;
    // Names in a map share long beginnings; equality of a fixed size is a few vector instructions.
    constexpr std::size_t kStride = 32;
    while (done + kStride <= length && std::memcmp(left + done, right + done, kStride) == 0)
        done += kStride;
    for (; done + 8 <= length; done += 8) {
        const auto a = loadWord<std::uint64_t>(left + done);
        const auto b = loadWord<std::uint64_t>(right + done);
        if (a != b)
            return orderOfFirstDifference(a, b);
    }
    if (done < length) {
        const std::uint64_t a = loadTail(left + done, length - done);
        const std::uint64_t b = loadTail(right + done, length - done);
        if (a != b)
            return orderOfFirstDifference(a, b);
    }
    return leftLength < rightLength ? -1 : leftLength > rightLength ? 1 : 0;
}

}  // namespace tav::text::detail
