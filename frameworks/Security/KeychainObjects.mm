// SPDX-License-Identifier: MIT
#include "Security/KeychainObjects.h"

#import <Foundation/Foundation.h>

using security::ItemPlace;
using security::StoreKind;

@interface ULAKeychain : NSObject {
@public
    StoreKind _kind;
}
@end

@implementation ULAKeychain
- (BOOL)isEqual:(id)other {
    return [other isKindOfClass:[ULAKeychain class]] &&
           static_cast<ULAKeychain*>(other)->_kind == _kind;
}
- (NSUInteger)hash {
    return static_cast<NSUInteger>(_kind);
}
@end

@interface ULAKeychainItem : NSObject {
@public
    ItemPlace _place;
}
@end

@implementation ULAKeychainItem
@end

namespace security {

namespace {

id objectOf(CFTypeRef reference) {
    return static_cast<id>(const_cast<void*>(reference));
}

}  // namespace

SecKeychainRef makeKeychain(StoreKind kind) {
    auto* const keychain = [[ULAKeychain alloc] init];
    keychain->_kind = kind;
    return reinterpret_cast<SecKeychainRef>(keychain);
}

SecKeychainItemRef makeItem(StoreKind kind, const ItemKey& name) {
    auto* const item = [[ULAKeychainItem alloc] init];
    item->_place = {kind, {std::string(name.service), std::string(name.account)}};
    return reinterpret_cast<SecKeychainItemRef>(item);
}

std::optional<StoreKind> kindOf(CFTypeRef keychain) {
    const id object = objectOf(keychain);
    if (![object isKindOfClass:[ULAKeychain class]])
        return std::nullopt;
    return static_cast<ULAKeychain*>(object)->_kind;
}

std::vector<StoreKind> kindsOf(CFTypeRef keychainOrArray) {
    if (keychainOrArray == nullptr)
        return SearchList::ofProcess().kinds();
    if (const std::optional<StoreKind> kind = kindOf(keychainOrArray))
        return {*kind};
    std::vector<StoreKind> kinds;
    const id object = objectOf(keychainOrArray);
    if (![object isKindOfClass:[NSArray class]])
        return kinds;
    for (const id element in static_cast<NSArray*>(object)) {
        if (const std::optional<StoreKind> kind = kindOf(element))
            kinds.push_back(*kind);
    }
    return kinds;
}

const ItemPlace* placeOf(SecKeychainItemRef item) {
    const id object = objectOf(item);
    if (![object isKindOfClass:[ULAKeychainItem class]])
        return nullptr;
    return &static_cast<ULAKeychainItem*>(object)->_place;
}

}  // namespace security
