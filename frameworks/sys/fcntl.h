// SPDX-License-Identifier: MIT
// The system's header, and what the platform's has besides: descriptors for watching only.
#pragma once

#include <fcntl.h>

#ifdef __cplusplus

/// A type of its own, so that the compiler tells a call that only wants to watch.
enum EventOnlyFlag : int { O_EVTONLY = 0x8000 };

extern "C++" {

/// Opens what the path leads to for `kevent` alone. Nothing can be read through the descriptor, no
/// right to read the item is needed, and nobody notices: a pipe is not waited for, a device not
/// started.
/// Fails: -1, and why in errno.
__attribute__((visibility("default"))) int open(const char* path, EventOnlyFlag flag);
}

#endif
