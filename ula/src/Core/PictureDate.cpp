// SPDX-License-Identifier: MIT
#include "ula/src/Core/PictureDate.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace tav::ula {

namespace {

constexpr std::string_view kExifHead("Exif\0\0", 6);
constexpr unsigned kExifDirectory = 0x8769;
constexpr unsigned kDateTimeOriginal = 0x9003;
constexpr unsigned kSubSecTimeOriginal = 0x9291;
constexpr unsigned kOffsetTimeOriginal = 0x9011;
constexpr unsigned kText = 2;
constexpr std::size_t kEntrySize = 12;

/// The numbers and texts of a TIFF, of either byte order. Outside of it everything is 0 or empty.
class Tiff {
public:
    explicit Tiff(std::string_view bytes) : _bytes(bytes), _isBig(bytes.substr(0, 2) == "MM") {}

    bool isOne() const { return (_isBig || _bytes.substr(0, 2) == "II") && number(2, 2) == 42; }
    std::uint32_t number(std::size_t at, std::size_t size) const {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size && at < _bytes.size() && size <= _bytes.size() - at; ++i) {
            const std::size_t place = _isBig ? at + i : at + size - 1 - i;
            value = (value << 8) | static_cast<unsigned char>(_bytes[place]);
        }
        return value;
    }
    /// Where the directory has the entry; nothing where it has none.
    std::optional<std::size_t> entry(std::size_t directory, unsigned tag) const {
        const std::uint32_t count = number(directory, 2);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::size_t at = directory + 2 + i * kEntrySize;
            if (at + kEntrySize > _bytes.size())
                break;
            if (number(at, 2) == tag)
                return at;
        }
        return std::nullopt;
    }
    std::string_view text(std::size_t directory, unsigned tag) const {
        const auto at = entry(directory, tag);
        if (!at || number(*at + 2, 2) != kText)
            return {};
        const std::size_t length = number(*at + 4, 4);
        const std::size_t place = length <= 4 ? *at + 8 : number(*at + 8, 4);
        if (place > _bytes.size() || length > _bytes.size() - place)
            return {};
        return _bytes.substr(place, length);
    }

private:
    std::string_view _bytes;
    bool _isBig;
};

std::optional<ShootingDate> dateOfTiff(std::string_view bytes) {
    const Tiff tiff(bytes);
    if (!tiff.isOne())
        return std::nullopt;
    const auto link = tiff.entry(tiff.number(4, 4), kExifDirectory);
    if (!link)
        return std::nullopt;
    const std::size_t directory = tiff.number(*link + 8, 4);
    return parseShootingDate(tiff.text(directory, kDateTimeOriginal),
                             tiff.text(directory, kSubSecTimeOriginal),
                             tiff.text(directory, kOffsetTimeOriginal));
}

std::uint32_t bigEndian16(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at])) << 8 |
           static_cast<unsigned char>(bytes[at + 1]);
}

/// The contents of the first EXIF segment, as far as it is there.
std::string_view exifOfJpeg(std::string_view bytes) {
    constexpr std::uint32_t kApplication1 = 0xFFE1;
    constexpr std::uint32_t kScan = 0xFFDA;
    for (std::size_t at = 2; at + 4 <= bytes.size();) {
        const std::uint32_t marker = bigEndian16(bytes, at);
        const std::size_t length = bigEndian16(bytes, at + 2);
        if (marker < 0xFF00 || marker == kScan || length < 2)
            break;
        const std::string_view segment = bytes.substr(at + 4, length - 2);
        if (marker == kApplication1 && segment.starts_with(kExifHead))
            return segment.substr(kExifHead.size());
        at += 2 + length;
    }
    return {};
}

std::string digits(int number, int width) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*d", width, number);
    return text;
}

std::string filled(const std::string& pattern, const PictureDay& day) {
    std::string result;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char kind = pattern[i] == '%' && i + 1 < pattern.size() ? pattern[i + 1] : '\0';
        const bool isKnown = kind == 'Y' || kind == 'm' || kind == 'd';
        if (isKnown)
            result +=
                kind == 'Y' ? digits(day.year, 4) : digits(kind == 'm' ? day.month : day.day, 2);
        else
            result += pattern[i];
        i += isKnown ? 1 : 0;
    }
    return result;
}

}  // namespace

std::optional<ShootingDate> pictureDate(std::string_view bytes) {
    const bool isJpeg = bytes.starts_with("\xFF\xD8");
    return dateOfTiff(isJpeg ? exifOfJpeg(bytes) : bytes);
}

PictureDay pictureDay(std::string_view bytes, std::int64_t modified) {
    if (const auto date = pictureDate(bytes))
        return {static_cast<int>(date->time.year), static_cast<int>(date->time.monthOfYear),
                static_cast<int>(date->time.dayOfMonth)};
    const auto time = static_cast<std::time_t>(modified);
    std::tm parts{};
    if (localtime_r(&time, &parts) == nullptr)
        return {1970, 1, 1};
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday};
}

std::string dateFolder(const std::string& pattern, const PictureDay& day) {
    const std::string path = filled(pattern, day);
    std::string result;
    for (std::size_t begin = 0; begin <= path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string component = path.substr(begin, end - begin);
        if (!component.empty() && component != "." && component != "..")
            result += (result.empty() ? "" : "/") + component;
        begin = end + 1;
    }
    return result;
}

}  // namespace tav::ula
