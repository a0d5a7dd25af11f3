// SPDX-License-Identifier: MIT
// Nothing but the headers that are compiled before.
