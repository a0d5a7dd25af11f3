// SPDX-License-Identifier: MIT
#pragma once

#include "ObjectFactory.h"

#include <string>
#include <string_view>

/// Readers of the forms of property lists. They take any bytes: whatever is in them costs time and
/// memory in proportion to their number, and containers in each other are followed to a limit.
namespace cf::plist {

enum class Format { OldStyle, Xml, Binary };

/// More levels than any list has, and few enough for the stack of any thread.
constexpr int kDeepestNesting = 512;

/// Finds out which form it is and reads it.
/// Fails, as all of these: null, the reason in `error`, with the line where there are lines.
Object readPropertyList(std::string_view bytes, ObjectFactory& factory, Format& format,
                        std::string& error);

Object readXml(std::string_view text, ObjectFactory& factory, std::string& error);
Object readOldStyle(std::string_view text, ObjectFactory& factory, std::string& error);
Object readBinary(std::string_view bytes, ObjectFactory& factory, std::string& error);

/// "line 12: REASON", for the byte at `position`.
std::string errorAt(std::string_view text, std::size_t position, const std::string& reason);

}  // namespace cf::plist
