// SPDX-License-Identifier: MIT
// The platform's scalar types, as far as these headers use them. Other framework headers may
// declare the same names to the same types.
#pragma once

#include <stdint.h>

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef SInt32 OSStatus;
typedef UInt32 OptionBits;
typedef unsigned long ByteCount;
typedef unsigned long ItemCount;
typedef uint16_t UniChar;
typedef unsigned long UniCharCount;

enum {
    noErr = 0,
    paramErr = -50,
};
