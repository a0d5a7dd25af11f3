// SPDX-License-Identifier: MIT
#include "CoreServices/MacRoman.h"

#include <cstdint>

namespace coreservices {

namespace {

// What the bytes from 0x80 on stand for.
constexpr char16_t kUpperHalf[128] = {
    0xC4,   0xC5,   0xC7,   0xC9,   0xD1,   0xD6,  0xDC,   0xE1,   0xE0,   0xE2,   0xE4,   0xE3,
    0xE5,   0xE7,   0xE9,   0xE8,   0xEA,   0xEB,  0xED,   0xEC,   0xEE,   0xEF,   0xF1,   0xF3,
    0xF2,   0xF4,   0xF6,   0xF5,   0xFA,   0xF9,  0xFB,   0xFC,   0x2020, 0xB0,   0xA2,   0xA3,
    0xA7,   0x2022, 0xB6,   0xDF,   0xAE,   0xA9,  0x2122, 0xB4,   0xA8,   0x2260, 0xC6,   0xD8,
    0x221E, 0xB1,   0x2264, 0x2265, 0xA5,   0xB5,  0x2202, 0x2211, 0x220F, 0x3C0,  0x222B, 0xAA,
    0xBA,   0x3A9,  0xE6,   0xF8,   0xBF,   0xA1,  0xAC,   0x221A, 0x192,  0x2248, 0x2206, 0xAB,
    0xBB,   0x2026, 0xA0,   0xC0,   0xC3,   0xD5,  0x152,  0x153,  0x2013, 0x2014, 0x201C, 0x201D,
    0x2018, 0x2019, 0xF7,   0x25CA, 0xFF,   0x178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0xB7,   0x201A, 0x201E, 0x2030, 0xC2,  0xCA,   0xC1,   0xCB,   0xC8,   0xCD,   0xCE,
    0xCF,   0xCC,   0xD3,   0xD4,   0xF8FF, 0xD2,  0xDA,   0xDB,   0xD9,   0x131,  0x2C6,  0x2DC,
    0xAF,   0x2D8,  0x2D9,  0x2DA,  0xB8,   0x2DD, 0x2DB,  0x2C7};

void append(std::string& text, uint32_t code) {
    auto put = [&text](uint32_t byte) { text += static_cast<char>(byte); };
    auto putTail = [&put](uint32_t bits) { put(0x80 | (bits & 0x3F)); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        putTail(code);
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        putTail(code >> 6);
        putTail(code);
    } else {
        put(0xF0 | code >> 18);
        putTail(code >> 12);
        putTail(code >> 6);
        putTail(code);
    }
}

uint32_t unitAt(std::string_view bytes, size_t offset) {
    if (offset + 2 > bytes.size())
        return 0;
    return static_cast<uint32_t>(static_cast<unsigned char>(bytes[offset]) << 8 |
                                 static_cast<unsigned char>(bytes[offset + 1]));
}

bool isHigh(uint32_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool isLow(uint32_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

}  // namespace

std::string fromMacRoman(std::string_view text) {
    std::string result;
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        append(result, byte < 0x80 ? byte : kUpperHalf[byte - 0x80]);
    }
    return result;
}

std::string fromBigEndianUtf16(std::string_view bytes) {
    std::string result;
    for (size_t i = 0; i + 2 <= bytes.size(); i += 2) {
        uint32_t unit = unitAt(bytes, i);
        uint32_t next = unitAt(bytes, i + 2);
        if (isHigh(unit) && isLow(next)) {
            append(result, 0x10000 + ((unit & 0x3FF) << 10) + (next & 0x3FF));
            i += 2;
        } else {
            append(result, isHigh(unit) || isLow(unit) ? 0xFFFD : unit);
        }
    }
    return result;
}

}  // namespace coreservices
