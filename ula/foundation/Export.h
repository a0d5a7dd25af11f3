// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the foundation library shows to programs; everything else stays hidden.
#define TAV_FOUNDATION_API __attribute__((visibility("default")))
