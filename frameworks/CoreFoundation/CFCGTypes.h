// SPDX-License-Identifier: MIT
// Points, sizes and rectangles of the platform's drawing.
#pragma once

#include <CoreFoundation/CFBase.h>

typedef double CGFloat;

typedef struct CGPoint {
    CGFloat x;
    CGFloat y;
} CGPoint;

typedef struct CGSize {
    CGFloat width;
    CGFloat height;
} CGSize;

typedef struct CGRect {
    CGPoint origin;
    CGSize size;
} CGRect;

static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    CGRect rectangle = {{x, y}, {width, height}};
    return rectangle;
}
