// SPDX-License-Identifier: MIT
#include "ula/foundation/text/NumberConversion.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

namespace tav::text {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kNanWithBits = "nan(0x";

std::string_view withoutBlanksAndPlus(const String& text) {
    std::string_view view = text.view();
    const std::size_t begin = view.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return {};
    view = view.substr(begin, view.find_last_not_of(kBlanks) - begin + 1);
    if (view.size() > 1 && view[0] == '+' && view[1] != '-')
        view.remove_prefix(1);
    return view;
}

template <class Number, class... Format>
bool parseWhole(std::string_view text, Number& result, Format... format) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, format...);
    if (error != std::errc() || stop != end)
        return false;
    result = number;
    return true;
}

bool isBase(int base) {
    return base >= 2 && base <= 36;
}

bool isUsualNan(double value) {
    return std::bit_cast<std::uint64_t>(value) ==
           std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN());
}

bool parseNanWithBits(std::string_view text, double& result) {
    if (text.substr(0, kNanWithBits.size()) != kNanWithBits || text.back() != ')')
        return false;
    text.remove_prefix(kNanWithBits.size());
    text.remove_suffix(1);
    std::uint64_t bits = 0;
    if (!parseWhole(text, bits, 16) || !std::isnan(std::bit_cast<double>(bits)))
        return false;
    result = std::bit_cast<double>(bits);
    return true;
}

}  // namespace

String itostr(int value, int base) {
    if (!isBase(base))
        return String();
    char buffer[36];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value, base).ptr;
    return String(buffer, static_cast<std::size_t>(end - buffer));
}

char* writeDouble(char* buffer, double value) {
    if (!std::isnan(value) || isUsualNan(value))
        return std::to_chars(buffer, buffer + kLongestDoubleText, value).ptr;
    std::memcpy(buffer, kNanWithBits.data(), kNanWithBits.size());
    char* end = std::to_chars(buffer + kNanWithBits.size(), buffer + kLongestDoubleText,
                              std::bit_cast<std::uint64_t>(value), 16)
                    .ptr;
    *end = ')';
    return end + 1;
}

String dtostr(double value) {
    char buffer[kLongestDoubleText];
    return String(buffer, static_cast<std::size_t>(writeDouble(buffer, value) - buffer));
}

bool parseInt(const String& text, int& result) {
    return parseWhole(withoutBlanksAndPlus(text), result, 10);
}

bool parseUnsigned64(const String& text, int base, std::uint64_t& result) {
    return isBase(base) && parseWhole(withoutBlanksAndPlus(text), result, base);
}

bool parseDouble(const String& text, double& result) {
    const std::string_view digits = withoutBlanksAndPlus(text);
    // First, for the library would read the text of any NaN as the usual one.
    return !digits.empty() && (parseNanWithBits(digits, result) || parseWhole(digits, result));
}

double strtod(const String& text, LocaleSetting) {
    double result = 0;
    parseDouble(text, result);
    return result;
}

std::uint64_t strtoui64(const String& text, int base) {
    std::uint64_t result = 0;
    parseUnsigned64(text, base, result);
    return result;
}

}  // namespace tav::text
