// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the library shows to programs; everything else stays hidden.
#define ULA_API __attribute__((visibility("default")))
/// Hides a class within one that is shown.
#define ULA_LOCAL __attribute__((visibility("hidden")))
