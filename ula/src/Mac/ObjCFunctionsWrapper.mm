// SPDX-License-Identifier: MIT
#include "ula/ObjCFunctionsWrapper.h"

#import "ula/ObjCHelper.h"
#include "ula/ScopedARPool.h"

namespace tav::ula::ObjCFunctionsWrapper {

void* stdStringToNSString(const std::string& text) {
    return [[NSString alloc] initWithCString:text.c_str() encoding:NSUTF8StringEncoding];
}

void* stdPathStringToNSDisplayString(const std::string& text) {
    const ScopedARPool pool;
    NSString* const plain = static_cast<NSString*>(stdStringToNSString(text));
    NSString* const display = [plain stringByReplacingOccurrencesOfString:@":" withString:@"/"];
    [display retain];
    [plain release];
    return display;
}

void releaseNSObject(void* object) {
    [static_cast<NSObject*>(object) release];
}

int compareLikeFinderWrapper(void* first, void* second) {
    // Turned round on purpose: callers sort with a positive result for "comes first".
    return -static_cast<int>(
        [static_cast<NSString*>(first) compareLikeFinder:static_cast<NSString*>(second)]);
}

int compareLikeFinderWrapper(const std::string& first, const std::string& second) {
    const ScopedARPool pool;
    return compareLikeFinderWrapper([NSString fromStdString:first],
                                    [NSString fromStdString:second]);
}

}  // namespace tav::ula::ObjCFunctionsWrapper
