// SPDX-License-Identifier: MIT
#pragma once

namespace cf {

/// Passes the result of a call that makes a descriptor through. Fails: -1, logged.
int checked(int descriptor, const char* call);

/// Does nothing for -1.
void closeDescriptor(int descriptor) noexcept;

/// Makes the number `descriptor` lead to what `replacement` leads to, and gives the latter back.
/// Does nothing when either is -1.
void replaceDescriptor(int descriptor, int replacement) noexcept;

}  // namespace cf
