// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include <unicode/ucol.h>

// Texts that try an order hard, the same in every run, and ICU's own word on them.
namespace texts {

class TextSource {
public:
    explicit TextSource(uint64_t seed) : _random(seed) {}

    // Any UTF-16: every script, digits of several scripts, combining marks, punctuation, Han,
    // Hangul, surrogate pairs, surrogates without their other half, controls.
    std::u16string anyText();

    // ASCII and Latin-1 with digits, some decomposed letters.
    std::u16string latinText();

    // A text near the given one: some characters changed, added, left out, or in other case.
    std::u16string variant(const std::u16string& text, bool latin);

    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(_random() % limit); }

private:
    void appendAny(std::u16string& text);
    void appendLatin(std::u16string& text);

    std::mt19937_64 _random;
};

// The collator that the Finder's options stand for, set up without the library's help.
UCollator* finderCollator(const char* locale);

int icuOrder(const UCollator* collator, const std::u16string& left, const std::u16string& right);

std::string icuKey(const UCollator* collator, const std::u16string& text);

// For messages: every code unit in hexadecimal.
std::string unitsOf(const std::u16string& text);

}  // namespace texts
