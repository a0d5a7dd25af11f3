// SPDX-License-Identifier: MIT
#pragma once

#include <cxxabi.h>
#include <new>

namespace cf {

// What a call of C answers: what its work gives or, where that throws, one of the other two. No
// exception leaves the library, whose callers may know none.
template <class Result, class Work>
Result guarded(Result withoutMemory, Result otherwise, Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return withoutMemory;
    } catch (abi::__forced_unwind&) {
        // No exception but the end of a thread that is cancelled, which may not be held up.
        throw;
    } catch (...) {
        return otherwise;
    }
}

}  // namespace cf
