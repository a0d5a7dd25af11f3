// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

#include <string>

namespace tav::ula {

/// Language, country, system and user. Every question is asked afresh.
/// Texts are UTF-8. Failures are not logged.
/// Thread: any.
class ULA_API Environment {
public:
    /// Owner: the caller.
    static Environment* create();

    /// The user's language as "en", or with its region as "en_GB". Fails: "en".
    static std::string getOSLanguageISO3166();
    /// The language's name in itself, up to the first blank: "Deutsch".
    static std::string getOSLanguage();
    /// The country whose formats the user has, as "US"; empty where there is none.
    static std::string getOSCountryISO3166();
    /// The name of the preferred language, in the language of `getOSLanguage`, and not of a
    /// country: callers depend on it. Fails: empty.
    static std::string getOSCountry();
    /// "12.0.0". Fails: a number that is not known is 0.
    static std::string getOSVersion();
    /// Always 0.
    static unsigned int getOSVersionNumber();
    /// Always true.
    static bool getOSis64bit();
    /// The login name.
    static std::string getUserName();
};

}  // namespace tav::ula
