// SPDX-License-Identifier: MIT
#pragma once

#include <CoreServices/UnicodeUtilities.h>

#include <memory>
#include <string>
#include <string_view>

#include <unicode/ucol.h>

namespace coreservices {

struct CollatorCloser {
    void operator()(UCollator* collator) const { ucol_close(collator); }
};
using OwnedCollator = std::unique_ptr<UCollator, CollatorCloser>;

// The options of the Finder's order, the ones with a fast path.
inline constexpr UCCollateOptions kFinderOptions =
    kUCCollateComposeInsensitiveMask | kUCCollateWidthInsensitiveMask |
    kUCCollateCaseInsensitiveMask | kUCCollatePunctuationSignificantMask |
    kUCCollateDigitsOverrideMask | kUCCollateDigitsAsNumberMask;

// Every bit that is accepted happens to be one of the Finder's.
inline bool optionsAreKnown(UCCollateOptions options) {
    return (options & ~kFinderOptions) == 0;
}

// The collation locale that a value of LC_COLLATE and its kin stands for; "" is the root order.
// The C locale's byte order is no order for people, so it gives the root order too.
std::string collationLocale(std::string_view environmentValue);

// The process's collation locale, read from the environment at the first call.
const std::string& processLocale();

// Fails: null when ICU has no data. A locale without rules of its own gets the root order.
OwnedCollator openCollator(const std::string& locale, UCCollateOptions options);

// The calling thread's collator for these options in the process's locale.
// Owner: the thread. Fails: null as openCollator.
UCollator* threadCollator(UCCollateOptions options);

}  // namespace coreservices
