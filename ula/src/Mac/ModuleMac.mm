// SPDX-License-Identifier: MIT
#include "ula/ModuleMac.h"

#include "ula/ScopedARPool.h"
#include "ula/src/Mac/Bridge.h"

#import <Foundation/Foundation.h>

#include <cstdint>

namespace tav::ula {

namespace {

/// Nil when there is none.
NSBundle* loadedBundle(NSString* identifier) {
    NSArray* const bundles = [NSBundle allBundles];
    const auto count = static_cast<std::int32_t>([bundles count]);
    for (std::int32_t i = 0; i < count; ++i) {
        NSBundle* const bundle = [bundles objectAtIndex:static_cast<NSUInteger>(i)];
        if ([[bundle bundleIdentifier] isEqualToString:identifier])
            return bundle;
    }
    // Also finds loaded frameworks, which are not listed above.
    return [NSBundle bundleWithIdentifier:identifier];
}

}  // namespace

ModuleMac::ModuleMac(void* bundle) {
    const ScopedARPool pool;
    _bundle = bundle != nullptr ? bundle : [NSBundle mainBundle];
    _identifier = fastTextOf([static_cast<NSBundle*>(_bundle) bundleIdentifier]);
}

ModuleMac::ModuleMac(const FastString& identifier) : _identifier(identifier) {
    const ScopedARPool pool;
    NSBundle* const found = loadedBundle([NSString fromUTF8String:identifier]);
    _bundle = found != nil ? found : [NSBundle mainBundle];
}

ModuleMac::~ModuleMac() = default;

void* ModuleMac::getBundle() const {
    return _bundle;
}

FastString ModuleMac::getPath() const {
    const ScopedARPool pool;
    return fastTextOf([static_cast<NSBundle*>(_bundle) bundlePath]);
}

FastString ModuleMac::getID() const {
    return _identifier;
}

}  // namespace tav::ula
