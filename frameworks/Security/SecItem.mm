// SPDX-License-Identifier: MIT
#include "CoreFoundation/AutoreleasePool.h"
#include "Security/KeychainObjects.h"

#include <Security/SecItem.h>

#import <Foundation/Foundation.h>

using security::guarded;
using security::ItemName;
using security::SearchList;

const CFStringRef kSecClass = CFSTR("class");
const CFStringRef kSecClassGenericPassword = CFSTR("genp");
const CFStringRef kSecMatchLimit = CFSTR("m_Limit");
const CFStringRef kSecMatchLimitAll = CFSTR("m_LimitAll");
const CFStringRef kSecMatchSearchList = CFSTR("m_SearchList");
const CFStringRef kSecReturnAttributes = CFSTR("r_Attributes");
const CFStringRef kSecAttrAccount = CFSTR("acct");
const CFStringRef kSecAttrService = CFSTR("svce");

namespace {

NSString* keyOf(CFStringRef key) {
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(key));
}

// Nil for bytes that are no text.
NSString* textOf(const std::string& bytes) {
    return [[[NSString alloc] initWithBytes:bytes.data()
                                     length:bytes.size()
                                   encoding:NSUTF8StringEncoding] autorelease];
}

bool asksForNames(NSDictionary* query) {
    return [[query objectForKey:keyOf(kSecClass)] isEqual:keyOf(kSecClassGenericPassword)] &&
           [[query objectForKey:keyOf(kSecMatchLimit)] isEqual:keyOf(kSecMatchLimitAll)] &&
           [[query objectForKey:keyOf(kSecReturnAttributes)] boolValue];
}

NSArray* descriptionsOf(const std::vector<ItemName>& names) {
    NSMutableArray* const list = [NSMutableArray array];
    for (const ItemName& name : names) {
        NSString* const service = textOf(name.service);
        NSString* const account = textOf(name.account);
        if (service == nil || account == nil)
            continue;
        [list addObject:@{keyOf(kSecAttrService) : service, keyOf(kSecAttrAccount) : account}];
    }
    return list;
}

OSStatus copyNames(NSDictionary* query, CFTypeRef* result) {
    if (!asksForNames(query))
        return errSecUnimplemented;
    NSArray* const keychains = [query objectForKey:keyOf(kSecMatchSearchList)];
    std::vector<ItemName> names;
    const OSStatus status = SearchList::ofProcess().list(security::kindsOf(keychains), names);
    if (status != errSecSuccess)
        return status;
    NSArray* const list = descriptionsOf(names);
    if ([list count] == 0)
        return errSecItemNotFound;
    *result = [list retain];
    return errSecSuccess;
}

}  // namespace

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result) {
    if (query == nullptr || result == nullptr)
        return errSecParam;
    const cf::AutoreleasePool pool;
    return guarded([&] {
        return copyNames(reinterpret_cast<NSDictionary*>(const_cast<__CFDictionary*>(query)),
                         result);
    });
}
