// SPDX-License-Identifier: MIT
#pragma once

#include <CoreServices/UnicodeUtilities.h>

#include <optional>
#include <string>
#include <string_view>

namespace coreservices {

using TextView = std::u16string_view;

inline TextView viewOf(const UniChar* text, UniCharCount length) {
    return {reinterpret_cast<const char16_t*>(text), length};
}

// What the options ask of a text that no ICU collator does by itself.
class PreparedText {
public:
    PreparedText(UCCollateOptions options, TextView text);

    // The text to hand to the collator.
    TextView text() const { return _folded ? TextView(*_folded) : _text; }

    // How many code points would join the one before them in the composed form; 0 where composed
    // and decomposed texts are to be equal. Texts the collator finds equal are ordered by it, so
    // that composed text comes before decomposed and the order stays transitive.
    UInt32 joiningCount() const { return _joiningCount; }

private:
    TextView _text;
    std::optional<std::u16string> _folded;
    UInt32 _joiningCount = 0;
};

}  // namespace coreservices
