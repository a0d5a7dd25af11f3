// SPDX-License-Identifier: MIT
#pragma once

#include "ObjectFactory.h"

#include <string>
#include <string_view>

/// The values that the text forms of property lists spell out. Blanks around a text do not matter.
namespace cf::plist {

/// Decimal, or hexadecimal after "0x". Fails: null for what is no integer of 64 bits.
Object makeInteger(std::string_view text, ObjectFactory& factory);
/// Fails: null for what is no number or beyond the range of a double.
Object makeReal(std::string_view text, ObjectFactory& factory);
/// "2026-11-21T08:30:00Z". Fails: null.
Object makeDate(std::string_view text, ObjectFactory& factory);
/// "2026-11-21 08:30:00 +0100", as old-style lists spell it. Fails: null.
Object makeOldStyleDate(std::string_view text, ObjectFactory& factory);
/// Fails: null for bytes that are none of base64.
Object makeBase64Data(std::string_view text, ObjectFactory& factory);

std::string_view trimmed(std::string_view text);

}  // namespace cf::plist
