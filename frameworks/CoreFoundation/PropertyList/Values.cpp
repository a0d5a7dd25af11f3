// SPDX-License-Identifier: MIT
#include "Values.h"

#include "Text.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace cf::plist {

namespace {

/// Takes the sign off; true for a minus.
bool takeSign(std::string_view& text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    return isNegative;
}

bool isSameWord(std::string_view text, std::string_view lowerCase) {
    if (text.size() != lowerCase.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if ((text[i] | 0x20) != lowerCase[i])
            return false;
    return true;
}

template <class Number>
bool parseWhole(std::string_view text, Number& number, int base = 10) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc() && stop == end;
}

bool parseMagnitude(std::string_view text, double& number) {
    if (isSameWord(text, "nan")) {
        number = std::numeric_limits<double>::quiet_NaN();
        return true;
    }
    if (isSameWord(text, "inf") || isSameWord(text, "infinity")) {
        number = std::numeric_limits<double>::infinity();
        return true;
    }
    // Otherwise a second sign would do.
    if (text.empty() || (text[0] != '.' && (text[0] < '0' || text[0] > '9')))
        return false;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

/// The days from 2001-01-01 to a day of the Gregorian calendar. A year is taken to begin in March,
/// so that the leap day is its last.
long daysOf(long year, long month, long day) {
    const long march = month > 2 ? year : year - 1;
    const long era = (march >= 0 ? march : march - 399) / 400;
    const long yearOfEra = march - era * 400;
    const long dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 730791;
}

/// Numbers of fixed places in a text.
class Fields {
public:
    explicit Fields(std::string_view text) : _text(text) {}

    long number(std::size_t begin, std::size_t length) {
        long value = 0;
        for (std::size_t i = begin; i < begin + length; ++i) {
            _isRight = _isRight && i < _text.size() && _text[i] >= '0' && _text[i] <= '9';
            value = _isRight ? value * 10 + (_text[i] - '0') : 0;
        }
        return value;
    }
    void expect(std::size_t place, char byte) {
        _isRight = _isRight && place < _text.size() && _text[place] == byte;
    }
    bool isRight() const { return _isRight; }

private:
    std::string_view _text;
    bool _isRight = true;
};

/// "2026-11-21T08:30:00", with another byte between date and time.
double timeOf(Fields& fields, char separator) {
    for (const std::size_t dash : {4UL, 7UL})
        fields.expect(dash, '-');
    fields.expect(10, separator);
    for (const std::size_t colon : {13UL, 16UL})
        fields.expect(colon, ':');
    const long days = daysOf(fields.number(0, 4), fields.number(5, 2), fields.number(8, 2));
    const long seconds =
        fields.number(11, 2) * 3600 + fields.number(14, 2) * 60 + fields.number(17, 2);
    return static_cast<double>(days * 86400 + seconds);
}

int base64Digit(char byte) {
    if (byte >= 'A' && byte <= 'Z')
        return byte - 'A';
    if (byte >= 'a' && byte <= 'z')
        return byte - 'a' + 26;
    if (byte >= '0' && byte <= '9')
        return byte - '0' + 52;
    return byte == '+' ? 62 : byte == '/' ? 63 : -1;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

Object makeInteger(std::string_view text, ObjectFactory& factory) {
    text = trimmed(text);
    const bool isNegative = takeSign(text);
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal)
        text.remove_prefix(2);
    std::uint64_t magnitude = 0;
    constexpr std::uint64_t kLargest = std::numeric_limits<std::int64_t>::max();
    if (!parseWhole(text, magnitude, isHexadecimal ? 16 : 10))
        return nullptr;
    if (isNegative)
        return magnitude > kLargest + 1 ? nullptr
                                        : factory.integer(static_cast<std::int64_t>(0 - magnitude));
    return magnitude > kLargest ? factory.unsignedInteger(magnitude)
                                : factory.integer(static_cast<std::int64_t>(magnitude));
}

Object makeReal(std::string_view text, ObjectFactory& factory) {
    text = trimmed(text);
    const bool isNegative = takeSign(text);
    double number = 0;
    if (!parseMagnitude(text, number))
        return nullptr;
    return factory.real(isNegative ? -number : number);
}

Object makeDate(std::string_view text, ObjectFactory& factory) {
    text = trimmed(text);
    Fields fields(text);
    const double time = timeOf(fields, 'T');
    fields.expect(19, 'Z');
    return fields.isRight() && text.size() == 20 ? factory.date(time) : nullptr;
}

Object makeOldStyleDate(std::string_view text, ObjectFactory& factory) {
    text = trimmed(text);
    Fields fields(text);
    const double time = timeOf(fields, ' ');
    fields.expect(19, ' ');
    const long ahead = fields.number(21, 2) * 3600 + fields.number(23, 2) * 60;
    if (!fields.isRight() || text.size() != 25 || (text[20] != '+' && text[20] != '-'))
        return nullptr;
    return factory.date(time - static_cast<double>(text[20] == '-' ? -ahead : ahead));
}

Object makeBase64Data(std::string_view text, ObjectFactory& factory) {
    std::string bytes;
    std::uint32_t bits = 0;
    int count = 0;
    bool isPadded = false;
    for (const char byte : text) {
        isPadded = isPadded || byte == '=';
        if (isBlank(byte) || byte == '=')
            continue;
        const int digit = base64Digit(byte);
        if (digit < 0 || isPadded)
            return nullptr;
        bits = (bits << 6) | static_cast<std::uint32_t>(digit);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<char>(bits >> count & 0xFF);
        }
    }
    return factory.data(bytes);
}

}  // namespace cf::plist
