// SPDX-License-Identifier: MIT
#include "CoreServices/Collator.h"

#include <array>
#include <cstdlib>

namespace coreservices {

namespace {

bool has(UCCollateOptions options, UCCollateOptions mask) {
    return (options & mask) == mask;
}

// ICU's third level holds case, width and other variants together. Case can be asked for by itself
// through the case level; width cannot, so where width matters and case does not, the texts come
// here with their case already folded (PreparedText).
void setStrength(UCollator* collator, UCCollateOptions options, UErrorCode* status) {
    bool caseMatters = !has(options, kUCCollateCaseInsensitiveMask);
    bool widthMatters = !has(options, kUCCollateWidthInsensitiveMask);
    ucol_setAttribute(collator, UCOL_STRENGTH, widthMatters ? UCOL_TERTIARY : UCOL_SECONDARY,
                      status);
    ucol_setAttribute(collator, UCOL_CASE_LEVEL, caseMatters ? UCOL_ON : UCOL_OFF, status);
}

// A small number for each set of options: the six bits brought together.
size_t slotOf(UCCollateOptions options) {
    return ((options >> 1) & 7u) | ((options >> 12) & 0x38u);
}

std::string environmentLocale() {
    for (const char* name : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0')
            return collationLocale(value);
    }
    return {};
}

}  // namespace

std::string collationLocale(std::string_view environmentValue) {
    std::string_view name = environmentValue.substr(0, environmentValue.find_first_of(".@"));
    if (name == "C" || name == "POSIX")
        return {};
    return std::string(name);
}

const std::string& processLocale() {
    static const std::string locale = environmentLocale();
    return locale;
}

OwnedCollator openCollator(const std::string& locale, UCCollateOptions options) {
    UErrorCode status = U_ZERO_ERROR;
    OwnedCollator collator(ucol_open(locale.c_str(), &status));
    if (U_FAILURE(status))
        return nullptr;
    bool punctuation = has(options, kUCCollatePunctuationSignificantMask);
    bool numbers = has(options, kUCCollateDigitsOverrideMask | kUCCollateDigitsAsNumberMask);
    setStrength(collator.get(), options, &status);
    ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    ucol_setAttribute(collator.get(), UCOL_ALTERNATE_HANDLING,
                      punctuation ? UCOL_NON_IGNORABLE : UCOL_SHIFTED, &status);
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, numbers ? UCOL_ON : UCOL_OFF,
                      &status);
    return U_SUCCESS(status) ? std::move(collator) : nullptr;
}

UCollator* threadCollator(UCCollateOptions options) {
    thread_local std::array<OwnedCollator, 64> collators;
    OwnedCollator& collator = collators[slotOf(options)];
    if (collator == nullptr)
        collator = openCollator(processLocale(), options);
    return collator.get();
}

}  // namespace coreservices
