// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the foundation library shows to programs; everything else stays hidden.
#define TAV_FOUNDATION_API __attribute__((visibility("default")))
/// Hides a class within one that is shown.
#define TAV_FOUNDATION_LOCAL __attribute__((visibility("hidden")))
