// SPDX-License-Identifier: MIT
// The platform's scalar types, as far as these headers use them. Other framework headers may
// declare the same names to the same types.
#pragma once

#include <stdint.h>

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int16_t SInt16;
typedef uint16_t UInt16;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef SInt16 OSErr;
typedef SInt32 OSStatus;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef char* Ptr;
typedef Ptr* Handle;
typedef UInt32 OptionBits;
typedef unsigned long ByteCount;
typedef unsigned long ItemCount;
typedef uint16_t UniChar;
typedef unsigned long UniCharCount;

typedef struct UTCDateTime {
    UInt16 highSeconds;
    UInt32 lowSeconds;
    UInt16 fraction;
} UTCDateTime;

enum {
    noErr = 0,
    nsvErr = -35,  // no such volume
    ioErr = -36,
    bdNamErr = -37,  // bad name
    fnfErr = -43,    // file not found
    paramErr = -50,
    volOffLinErr = -53,
    memFullErr = -108,
    dirNFErr = -120,  // folder not found
    usrCanceledErr = -128,
    afpAccessDenied = -5000,
};
