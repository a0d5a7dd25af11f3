// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"

#include <functional>
#include <string>

namespace tav::text {

/// Fills the "%*" placeholders of a format, one per `add`, in order, and hands the finished text
/// on when it is destroyed: at the end of the statement that made it.
///
/// An argument's own "%*" is left as it stands. Arguments beyond the last placeholder are
/// appended after a blank, so that nothing is lost; placeholders without an argument stay.
class TAV_FOUNDATION_API FormatStream {
public:
    using Finish = std::function<void(const std::string& text)>;

    /// `format` must live as long as the stream; null counts as empty.
    FormatStream(const char* format, Finish finish);
    FormatStream(const FormatStream&) = delete;
    FormatStream& operator=(const FormatStream&) = delete;
    /// Calls `finish` with the text. Fails: what `finish` throws is dropped.
    ~FormatStream();

    const FormatStream& add(const String& argument) const;

private:
    mutable std::string _text;
    mutable const char* _rest;
    Finish _finish;
};

}  // namespace tav::text
