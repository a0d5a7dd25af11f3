// SPDX-License-Identifier: MIT
#include "ula/src/Core/JobMemory.h"

#include <atomic>
#include <new>

namespace tav::ula::JobMemory {

namespace {

/// A sanitizer is to see every use of memory that was given back.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kMostKept = 0;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr int kMostKept = 0;
#else
constexpr int kMostKept = 4096;
#endif
#else
constexpr int kMostKept = 4096;
#endif

struct Piece {
    Piece* next;
};

/// What was given back. Pieces are pushed singly and taken all at once, so that no piece can be
/// pushed a second time while somebody is looking at it.
std::atomic<Piece*> given;
std::atomic<int> givenCount;

Piece* takeAllGiven() {
    if (!given.load(std::memory_order_relaxed))
        return nullptr;
    givenCount.store(0, std::memory_order_relaxed);
    return given.exchange(nullptr, std::memory_order_acquire);
}

/// The pieces that a thread has taken and not used yet.
struct Supply {
    ~Supply() {
        while (Piece* const piece = take())
            ::operator delete(piece);
    }
    Piece* take() {
        Piece* const piece = first;
        if (piece)
            first = piece->next;
        return piece;
    }
    Piece* first = nullptr;
};

thread_local Supply supply;

}  // namespace

void* take() {
    if (!supply.first)
        supply.first = takeAllGiven();
    if (Piece* const piece = supply.take())
        return piece;
    return ::operator new(kSize);
}

void give(void* memory) noexcept {
    if (givenCount.load(std::memory_order_relaxed) >= kMostKept)
        return ::operator delete(memory);
    givenCount.fetch_add(1, std::memory_order_relaxed);
    auto* const piece = new (memory) Piece{given.load(std::memory_order_relaxed)};
    while (!given.compare_exchange_weak(piece->next, piece, std::memory_order_release,
                                        std::memory_order_relaxed))
        continue;
}

}  // namespace tav::ula::JobMemory
