// SPDX-License-Identifier: MIT
#include "CoreServices/PreparedText.h"

#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace coreservices {

namespace {

std::u16string foldCase(TextView text) {
    // Folding makes a code unit three at most.
    std::u16string folded(text.size() * 3, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = u_strFoldCase(folded.data(), static_cast<int32_t>(folded.size()), text.data(),
                                   static_cast<int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &status);
    if (U_FAILURE(status))
        return std::u16string(text);
    folded.resize(static_cast<size_t>(length));
    return folded;
}

UInt32 countJoining(TextView text) {
    UErrorCode status = U_ZERO_ERROR;
    const UNormalizer2* composed = unorm2_getNFCInstance(&status);
    UInt32 count = 0;
    for (size_t i = 0; U_SUCCESS(status) && i < text.size();) {
        UChar32 codePoint = 0;
        U16_NEXT(text.data(), i, text.size(), codePoint);
        if (unorm2_hasBoundaryBefore(composed, codePoint) == 0)
            ++count;
    }
    return count;
}

}  // namespace

PreparedText::PreparedText(UCCollateOptions options, TextView text) : _text(text) {
    bool caseMatters = (options & kUCCollateCaseInsensitiveMask) == 0;
    bool widthMatters = (options & kUCCollateWidthInsensitiveMask) == 0;
    if (widthMatters && !caseMatters)
        _folded = foldCase(text);
    if ((options & kUCCollateComposeInsensitiveMask) == 0)
        _joiningCount = countJoining(text);
}

}  // namespace coreservices
