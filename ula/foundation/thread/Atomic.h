// SPDX-License-Identifier: MIT
#pragma once

namespace tav::thread {

/// Adds one and returns the new value. Later reads are not moved before it.
inline int atomicIncrementAcquire(int volatile* target) {
    return __atomic_add_fetch(target, 1, __ATOMIC_ACQUIRE);
}

/// Subtracts one and returns the new value, zero after the last release. Earlier writes are seen
/// by the thread that takes the value to zero.
inline int atomicDecrementRelease(int volatile* target) {
    return __atomic_sub_fetch(target, 1, __ATOMIC_ACQ_REL);
}

/// Stores `value` and returns the previous value; sequentially consistent.
inline int atomicExchange(int volatile* target, int value) {
    return __atomic_exchange_n(target, value, __ATOMIC_SEQ_CST);
}

/// Stores `desired` if the target holds `expected`; returns the previous value in either case.
inline int atomicCompareAndExchange(int volatile* target, int expected, int desired) {
    __atomic_compare_exchange_n(target, &expected, desired, false, __ATOMIC_SEQ_CST,
                                __ATOMIC_SEQ_CST);
    return expected;
}

}  // namespace tav::thread
