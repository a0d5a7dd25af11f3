// SPDX-License-Identifier: MIT
#include "CoreServices/KeySort.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace coreservices {

namespace {

using Iterator = std::vector<SortedKey>::iterator;

constexpr uint64_t kLowBits = 0x0101010101010101u;
constexpr uint64_t kHighBits = 0x8080808080808080u;

// The first zero byte of a word, counted from the most significant one, sets its high bit here;
// bytes before it are clear.
uint64_t zeroBytes(uint64_t littleEndianWord) {
    return (littleEndianWord - kLowBits) & ~littleEndianWord & kHighBits;
}

// Reads the next eight bytes so that they compare as a number, zero from the key's end on.
void loadWord(SortedKey& key) {
    uint64_t bytes;
    std::memcpy(&bytes, key.rest, sizeof bytes);
    if (uint64_t zeros = zeroBytes(bytes))
        bytes &= (zeros & (~zeros + 1)) - 1;
    key.word = __builtin_bswap64(bytes);
    key.rest += sizeof bytes;
}

// A key whose end is in the word has a zero as the word's last byte.
bool hasEnded(const SortedKey& key) {
    return (key.word & 0xFF) == 0;
}

struct Range {
    Iterator begin;
    Iterator end;
};

// Orders a range by its words; ranges of equal words that go on are left to be done.
void sortByWord(Range range, std::vector<Range>& todo) {
    std::sort(range.begin, range.end,
              [](const SortedKey& a, const SortedKey& b) { return a.word < b.word; });
    for (Iterator first = range.begin; first != range.end;) {
        Iterator last = first + 1;
        while (last != range.end && last->word == first->word)
            ++last;
        if (last - first > 1) {
            if (hasEnded(*first))
                std::sort(first, last, [](auto& a, auto& b) { return a.item < b.item; });
            else
                todo.push_back({first, last});
        }
        first = last;
    }
}

}  // namespace

// A list of ranges instead of recursion: equal beginnings can be as long as the longest text.
void sortKeys(std::vector<SortedKey>& keys) {
    std::vector<Range> todo{{keys.begin(), keys.end()}};
    while (!todo.empty()) {
        Range range = todo.back();
        todo.pop_back();
        std::for_each(range.begin, range.end, loadWord);
        sortByWord(range, todo);
    }
}

}  // namespace coreservices
