// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

#include <string>

/// The platform's string objects for code that cannot see their type: they travel as `void*`.
/// Texts are UTF-8 and valid, objects not null.
/// Thread: any.
namespace tav::ula::ObjCFunctionsWrapper {

/// A new `NSString` of the text up to its first zero byte. Owner: the caller, who ends with
/// `releaseNSObject`.
ULA_API void* stdStringToNSString(const std::string& text);
/// The same with every ":" replaced by "/", which turns a path's component into what the user is
/// shown.
ULA_API void* stdPathStringToNSDisplayString(const std::string& text);
ULA_API void releaseNSObject(void* object);

/// Compares two `NSString` objects in the Finder's order, with the sign turned round: 1 when the
/// first comes before the second, -1 when it comes after, 0 when they are equal.
ULA_API int compareLikeFinderWrapper(void* first, void* second);
/// The same for two texts.
ULA_API int compareLikeFinderWrapper(const std::string& first, const std::string& second);

}  // namespace tav::ula::ObjCFunctionsWrapper
