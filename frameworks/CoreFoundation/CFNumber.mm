// SPDX-License-Identifier: MIT
#include "AutoreleasePool.h"

#include <CoreFoundation/CFNumber.h>
#include <cstring>
#include <limits>
#include <objc/message.h>
#include <objc/runtime.h>
#include <type_traits>

namespace {

NSNumber* number(const void* reference) {
    return static_cast<NSNumber*>(const_cast<void*>(reference));
}

// NSNumber's object for a truth value. Runs while the library is loaded, when the message sends of
// this file need not work yet: the runtime is asked by name.
CFBooleanRef boolean(BOOL value) {
    SEL selector = sel_registerName("numberWithBool:");
    id numbers = objc_getClass("NSNumber");
    auto make = reinterpret_cast<id (*)(id, SEL, BOOL)>(objc_msg_lookup(numbers, selector));
    return reinterpret_cast<CFBooleanRef>(make(numbers, selector, value));
}

bool isReal(NSNumber* value) {
    return strcmp([value objCType], @encode(double)) == 0 ||
           strcmp([value objCType], @encode(float)) == 0;
}

template <class T>
T nearest(double value) {
    if constexpr (std::is_integral_v<T>) {
        // The largest integers have no exact double: from 2^63 on the cast would be undefined.
        if (value >= static_cast<double>(std::numeric_limits<T>::max()))
            return std::numeric_limits<T>::max();
        if (value <= static_cast<double>(std::numeric_limits<T>::min()))
            return std::numeric_limits<T>::min();
        return value != value ? T{} : static_cast<T>(value);
    } else {
        return static_cast<T>(value);
    }
}

template <class T>
T nearest(long long value) {
    if constexpr (std::is_integral_v<T>) {
        if (value > std::numeric_limits<T>::max())
            return std::numeric_limits<T>::max();
        if (value < std::numeric_limits<T>::min())
            return std::numeric_limits<T>::min();
    }
    return static_cast<T>(value);
}

// One that no signed number can be.
bool isAboveSigned(NSNumber* value) {
    const char kind = [value objCType][0];
    return (kind == 'Q' || kind == 'L') &&
           [value unsignedLongLongValue] > std::numeric_limits<long long>::max();
}

template <class T>
T nearest(unsigned long long value) {
    if constexpr (std::is_integral_v<T>)
        return std::numeric_limits<T>::max();
    return static_cast<T>(value);
}

template <class T>
bool store(NSNumber* source, void* target) {
    T stored{};
    bool exact = false;
    if (isReal(source)) {
        double value = [source doubleValue];
        stored = nearest<T>(value);
        exact = static_cast<double>(stored) == value || (value != value && !std::is_integral_v<T>);
    } else if (isAboveSigned(source)) {
        unsigned long long value = [source unsignedLongLongValue];
        stored = nearest<T>(value);
        exact = static_cast<long double>(stored) == static_cast<long double>(value);
    } else {
        long long value = [source longLongValue];
        stored = nearest<T>(value);
        exact = static_cast<long double>(stored) == static_cast<long double>(value);
    }
    memcpy(target, &stored, sizeof stored);
    return exact;
}

// Calls action with a value of the C type that the number type names.
template <class Action>
auto withType(CFNumberType type, Action action) -> decltype(action(int{})) {
    switch (type) {
    case kCFNumberSInt8Type:
    case kCFNumberCharType:
        return action(static_cast<signed char>(0));
    case kCFNumberSInt16Type:
    case kCFNumberShortType:
        return action(static_cast<short>(0));
    case kCFNumberSInt32Type:
    case kCFNumberIntType:
        return action(0);
    case kCFNumberSInt64Type:
    case kCFNumberLongType:
    case kCFNumberLongLongType:
    case kCFNumberCFIndexType:
        return action(0LL);
    case kCFNumberFloat32Type:
    case kCFNumberFloatType:
        return action(0.0F);
    case kCFNumberFloat64Type:
    case kCFNumberDoubleType:
        return action(0.0);
    default:
        return {};
    }
}

}  // namespace

const CFBooleanRef kCFBooleanTrue = boolean(YES);
const CFBooleanRef kCFBooleanFalse = boolean(NO);

Boolean CFBooleanGetValue(CFBooleanRef value) {
    return [number(value) boolValue];
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void* value) {
    cf::AutoreleasePool pool;
    NSNumber* made = withType(type, [&](auto typed) -> NSNumber* {
        memcpy(&typed, value, sizeof typed);
        if constexpr (std::is_integral_v<decltype(typed)>)
            return [[NSNumber alloc] initWithLongLong:typed];
        else
            return [[NSNumber alloc] initWithDouble:typed];
    });
    return reinterpret_cast<CFNumberRef>(made);
}

Boolean CFNumberGetValue(CFNumberRef reference, CFNumberType type, void* value) {
    return withType(type,
                    [&](auto typed) { return store<decltype(typed)>(number(reference), value); });
}
